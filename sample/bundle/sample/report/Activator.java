package sample.report;

import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Dictionary;
import java.util.Hashtable;

import org.eclipse.osgi.service.environment.EnvironmentInfo;
import org.eclipse.osgi.service.runnable.ParameterizedRunnable;
import org.osgi.framework.BundleActivator;
import org.osgi.framework.BundleContext;

/**
 * Offers the sample's applications to the platform. A ParameterizedRunnable that carries the
 * property "eclipse.application" is what the platform runs on its main thread once every bundle has
 * started; the exit status is the system property "eclipse.exitcode". That needs no extension
 * registry, so the framework and this bundle are the whole platform.
 */
public final class Activator implements BundleActivator {
    /** The application started when provisioning is due ("provisioning.application"). */
    private static final String PROVISIONING = "sample.provisioning";
    /** The exit status on which the launcher library starts its program again. */
    private static final String EXIT_RESTART = "23";

    @Override
    public void start(BundleContext context) {
        EnvironmentInfo platform =
                context.getService(context.getServiceReference(EnvironmentInfo.class));
        Dictionary<String, Object> properties = new Hashtable<>();
        properties.put("eclipse.application", "default");
        context.registerService(
                ParameterizedRunnable.class, arguments -> run(platform), properties);
    }

    @Override
    public void stop(BundleContext context) {
        // The framework withdraws the service together with the bundle.
    }

    private static Object run(EnvironmentInfo platform) throws Exception {
        // System.out follows the terminal's locale; a path may hold any character.
        PrintStream out = new PrintStream(
                new FileOutputStream(FileDescriptor.out), true, StandardCharsets.UTF_8);
        if (PROVISIONING.equals(CommandLine.last(platform.getCommandLineArgs(), "-application"))) {
            new Provisioning(platform, out).run();
        } else {
            new Report(platform, out).print();
            stay(out);
        }
        if (restartsOnce()) {
            System.setProperty("eclipse.exitcode", EXIT_RESTART);
        }
        return 0;
    }

    /** With SAMPLE_RESTART_ONCE, the path of a file that is made when the one restart is asked for. */
    private static boolean restartsOnce() throws IOException {
        String mark = System.getenv("SAMPLE_RESTART_ONCE");
        if (mark == null || mark.isEmpty() || Files.exists(Path.of(mark))) {
            return false;
        }
        Files.createFile(Path.of(mark));
        return true;
    }

    /** Keeps the platform up for a while, so that a second launch finds it running. */
    private static void stay(PrintStream out) throws InterruptedException {
        String seconds = System.getenv("SAMPLE_STAY_SECONDS");
        if (seconds == null || seconds.isEmpty()) {
            return;
        }
        out.println();
        out.println("The platform stays up for " + seconds + " seconds; Ctrl-C ends it.");
        Thread.sleep(Long.parseLong(seconds) * 1000);
    }
}
