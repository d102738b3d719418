package sample.report;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.ArrayList;
import java.util.List;

import org.eclipse.osgi.service.environment.EnvironmentInfo;

/**
 * Stands for an application that installs features before the client starts. It installs nothing;
 * it records the provisioning level, which is what tells the launcher that the work is done.
 */
public final class Provisioning {
    /** The level this installation asks for; "rcplauncher.properties" hands it over. */
    private static final String LEVEL_PROPERTY = "sample.provisioning.level";
    private static final String LEVEL_KEY = "provisioning.manifest.version";

    private final EnvironmentInfo platform;
    private final PrintStream out;

    public Provisioning(EnvironmentInfo platform, PrintStream out) {
        this.platform = platform;
        this.out = out;
    }

    public static String level() {
        String level = System.getProperty(LEVEL_PROPERTY);
        if (level == null || level.isEmpty()) {
            throw new IllegalStateException(LEVEL_PROPERTY + " is not set: no level to record");
        }
        return level;
    }

    public void run() throws IOException {
        String level = level();
        Path properties = Path.of(
                platform.getProperty("osgi.configuration.area").replaceFirst("^file:", ""),
                "rcpinstall.properties");
        out.println();
        out.println("This is the provisioning application.");
        out.printf("    %-28s%d%n", "process id", ProcessHandle.current().pid());
        out.printf("    %-28s%s%n", "provisioning level", level);
        record(properties, level);
        out.printf("    %-28s%s%n", "recorded in", properties);
    }

    /**
     * Replaces the recorded level. The launcher takes the first entry of a key, so the old line has
     * to give way; adding a new one behind it would change nothing and provision for ever. The file
     * is put in place whole: a launcher may read it at any moment.
     */
    private static void record(Path properties, String level) throws IOException {
        List<String> lines = new ArrayList<>();
        // One byte is one character here, so every other line keeps its bytes.
        for (String line : Files.readAllLines(properties, StandardCharsets.ISO_8859_1)) {
            if (!line.trim().matches(LEVEL_KEY.replace(".", "\\.") + "([ \\t=:].*)?")) {
                lines.add(line);
            }
        }
        lines.add(LEVEL_KEY + "=" + level);
        Path whole = properties.resolveSibling("rcpinstall.properties.provisioned");
        Files.write(whole, lines, StandardCharsets.ISO_8859_1);
        Files.move(whole, properties, StandardCopyOption.ATOMIC_MOVE);
    }
}
