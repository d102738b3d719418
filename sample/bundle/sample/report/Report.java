package sample.report;

import java.io.PrintStream;
import java.lang.management.ManagementFactory;
import java.util.List;
import java.util.TreeSet;

import org.eclipse.osgi.service.environment.EnvironmentInfo;

/** Prints what the platform was started with: everything the launcher hands to its JVM. */
public final class Report {
    /** System properties that every launch sets; the sample's own begin with "sample.". */
    private static final List<String> LAUNCHER_PROPERTIES = List.of(
            "rcp.home", "rcp.data", "rcp.osgi.install.area", "rcp.install.config",
            "com.ovr.rcp.install.id", "osgi.install.area", "osgi.splashPath", "file.encoding");

    /** Environment variables that the launcher sets or removes for the JVM. */
    private static final List<String> ENVIRONMENT = List.of(
            "DYLD_LIBRARY_PATH", "LD_LIBRARY_PATH", "LD_PRELOAD", "JAVA_HIGH_ZIPFDS",
            "SAMPLE_SET", "SAMPLE_REMOVED");

    private final EnvironmentInfo platform;
    private final PrintStream out;

    public Report(EnvironmentInfo platform, PrintStream out) {
        this.platform = platform;
        this.out = out;
    }

    public void print() {
        heading("The platform is running");
        line("process id", ProcessHandle.current().pid());
        line("started as", role());
        line("JVM", System.getProperty("java.vm.name") + " " + System.getProperty("java.version"));
        line("application", CommandLine.last(platform.getCommandLineArgs(), "-application"));
        line("product", CommandLine.last(platform.getCommandLineArgs(), "-product"));
        line("-data", path("osgi.instance.area"));
        line("-configuration", path("osgi.configuration.area"));

        list("Command line of the platform", platform.getCommandLineArgs());
        list("Arguments that the framework used", platform.getFrameworkArgs());
        list("Arguments left to the application", platform.getNonFrameworkArgs());
        list("Arguments of the JVM",
                ManagementFactory.getRuntimeMXBean().getInputArguments().toArray(new String[0]));

        heading("System properties");
        LAUNCHER_PROPERTIES.forEach(key -> line(key, System.getProperty(key)));
        for (String key : new TreeSet<>(System.getProperties().stringPropertyNames())) {
            if (key.startsWith("sample.")) {
                line(key, System.getProperty(key));
            }
        }

        heading("Environment");
        ENVIRONMENT.forEach(name -> line(name, System.getenv(name)));

        heading("Milliseconds");
        long jvm = ManagementFactory.getRuntimeMXBean().getStartTime();
        ProcessHandle.current().info().startInstant().ifPresent(
                start -> line("before the JVM", jvm - start.toEpochMilli()));
        line("from there to this report", System.currentTimeMillis() - jvm);
    }

    /** A launcher that finds a running platform passes that platform's id on. */
    private String role() {
        String mainProcess = CommandLine.last(platform.getCommandLineArgs(), "-useDaemon");
        return mainProcess == null
                ? "the main process of its workspace"
                : "a daemon of process " + mainProcess;
    }

    private String path(String key) {
        String location = platform.getProperty(key);
        return location == null ? null : location.replaceFirst("^file:", "");
    }

    private void heading(String text) {
        out.println();
        out.println(text);
    }

    private void line(String name, Object value) {
        out.printf("    %-28s%s%n", name, value == null ? "(not set)" : value);
    }

    private void list(String title, String[] values) {
        heading(title + (values.length == 0 ? ": none" : ""));
        for (int index = 0; index < values.length; index++) {
            out.printf("    %3d %s%n", index, values[index]);
        }
    }
}
