import java.io.IOException;
import java.io.OutputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.ArrayList;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import java.util.jar.Attributes;
import java.util.jar.JarEntry;
import java.util.jar.JarFile;
import java.util.jar.JarOutputStream;
import java.util.jar.Manifest;
import java.util.stream.Collectors;

/**
 * Puts the bundles of the desktop sample together from Debian's jars, as "bundles.list" says.
 *
 * <p>usage: Bundles PLUGINS INFO LIST... PLUGINS is the folder of the bundles, which are links where nothing
 * changes; INFO is the configurator's list of them. A bundle that a running platform may have open is replaced by
 * rename.
 */
public final class Bundles {
    private static final Path JARS = Path.of("/usr/share/java");
    private static final int DEFAULT_LEVEL = 4;

    private final Path plugins;
    private final List<String> info = new ArrayList<>(List.of("#encoding=UTF-8", "#version=1"));

    private Bundles(Path plugins) {
        this.plugins = plugins;
    }

    public static void main(String[] arguments) throws IOException {
        Bundles bundles = new Bundles(Path.of(arguments[0]));
        Files.createDirectories(bundles.plugins);
        for (int list = 2; list < arguments.length; list++) {
            for (String line : Files.readAllLines(Path.of(arguments[list]))) {
                if (!line.isBlank() && !line.startsWith("#")) {
                    bundles.add(List.of(line.split(" ")));
                }
            }
        }
        Path file = Path.of(arguments[1]);
        Files.createDirectories(file.getParent());
        Files.write(file, bundles.info);
    }

    private void add(List<String> words) throws IOException {
        Path jar = JARS.resolve(words.get(1));
        switch (words.get(0)) {
            case "link":
                list(link(jar), words.size() > 2 ? words.get(2) : "");
                break;
            case "edit":
                list(edit(jar, pairs(words.subList(2, words.size()))), "");
                break;
            case "make":
                list(make(jar, words.get(2), words.get(3), pairs(words.subList(4, words.size()))), "");
                break;
            default:
                throw new IllegalArgumentException("bundles.list: " + words.get(0));
        }
    }

    private static Map<String, String> pairs(List<String> words) {
        Map<String, String> result = new LinkedHashMap<>();
        for (String word : words) {
            String[] pair = word.split("=", 2);
            result.put(pair[0], pair[1]);
        }
        return result;
    }

    private Path link(Path jar) throws IOException {
        Path target = bundle(nameIn(manifestOf(jar)));
        if (Files.isSymbolicLink(target) && Files.readSymbolicLink(target).equals(jar)) {
            return target;
        }
        Path next = beside(target);
        Files.createSymbolicLink(next, jar);
        return Files.move(next, target, StandardCopyOption.ATOMIC_MOVE);
    }

    private Path edit(Path jar, Map<String, String> headers) throws IOException {
        Manifest manifest = manifestOf(jar);
        headers.forEach((header, value) -> manifest.getMainAttributes().putValue(header, value));
        manifest.getEntries().clear(); // digests of a signature, which is gone
        return write(manifest, jar, name -> !name.startsWith("META-INF/"));
    }

    private Path make(Path jar, String name, String version, Map<String, String> parts) throws IOException {
        Manifest manifest = new Manifest();
        Attributes main = manifest.getMainAttributes();
        main.put(Attributes.Name.MANIFEST_VERSION, "1.0");
        main.putValue("Bundle-ManifestVersion", "2");
        main.putValue("Bundle-SymbolicName", name);
        main.putValue("Bundle-Version", version);
        // The packages of a jar know each other, the framework's and others, and who needs which is not recorded.
        main.putValue("DynamicImport-Package", "*");
        Map<String, String> packages = new LinkedHashMap<>(parts);
        packages.keySet().removeIf(key -> key.contains("-"));
        parts.keySet().removeAll(packages.keySet());
        if (packages.isEmpty()) {
            packagesOf(jar).forEach(key -> packages.put(key, version));
        }
        parts.forEach(main::putValue);
        main.putValue("Export-Package", packages.entrySet().stream()
                .map(entry -> entry.getKey() + ";version=\"" + entry.getValue() + "\"")
                .collect(Collectors.joining(",")));
        return write(manifest, jar, entry -> packages.containsKey(packageOf(entry)));
    }

    private static Set<String> packagesOf(Path jar) throws IOException {
        try (JarFile file = new JarFile(jar.toFile())) {
            return file.stream().map(JarEntry::getName)
                    .filter(name -> name.endsWith(".class") && !name.startsWith("META-INF/"))
                    .map(Bundles::packageOf).collect(Collectors.toCollection(TreeSet::new));
        }
    }

    private static String packageOf(String entry) {
        return entry.replaceFirst("/[^/]*$", "").replace('/', '.');
    }

    private interface Choice {
        boolean takes(String entry);
    }

    private Path write(Manifest manifest, Path jar, Choice choice) throws IOException {
        Path target = bundle(nameIn(manifest));
        Path next = beside(target);
        try (JarFile from = new JarFile(jar.toFile());
                OutputStream file = Files.newOutputStream(next);
                JarOutputStream to = new JarOutputStream(file, manifest)) {
            for (JarEntry entry : Collections.list(from.entries())) {
                if (!entry.isDirectory() && choice.takes(entry.getName())) {
                    to.putNextEntry(new JarEntry(entry.getName()));
                    from.getInputStream(entry).transferTo(to);
                }
            }
        }
        return Files.move(next, target, StandardCopyOption.ATOMIC_MOVE);
    }

    private Path bundle(String name) {
        return plugins.resolve(name + ".jar");
    }

    /** Nothing is there, not even what a run that was killed has left. */
    private static Path beside(Path target) throws IOException {
        Path next = target.resolveSibling(target.getFileName() + ".new");
        Files.deleteIfExists(next);
        return next;
    }

    /** An empty level: the default one, and nothing starts the bundle but a class that is asked of it. */
    private void list(Path jar, String level) throws IOException {
        Manifest manifest = manifestOf(jar);
        info.add(String.join(",", nameIn(manifest), manifest.getMainAttributes().getValue("Bundle-Version"),
                "plugins/" + jar.getFileName(), level.isEmpty() ? "" + DEFAULT_LEVEL : level,
                "" + !level.isEmpty()));
    }

    private static Manifest manifestOf(Path jar) throws IOException {
        try (JarFile file = new JarFile(jar.toFile())) {
            return file.getManifest();
        }
    }

    private static String nameIn(Manifest manifest) {
        return manifest.getMainAttributes().getValue("Bundle-SymbolicName").split(";")[0].trim();
    }
}
