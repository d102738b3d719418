package sample.provisioning;

import java.nio.file.Path;

import org.eclipse.equinox.app.IApplication;
import org.eclipse.equinox.app.IApplicationContext;
import org.eclipse.equinox.internal.p2.director.app.DirectorApplication;
import org.eclipse.osgi.service.environment.EnvironmentInfo;
import org.osgi.framework.BundleContext;
import org.osgi.framework.FrameworkUtil;

import sample.report.Provisioning;

/**
 * Lets p2's director install what belongs to the installation's level, then records the level. The director
 * is called from here since it refuses the launcher's own arguments.
 */
public final class Application implements IApplication {
    @Override
    public Object start(IApplicationContext context) throws Exception {
        context.applicationRunning(); // takes the splash down
        Path installation = Path.of(System.getProperty("rcp.home"));
        // A place of its own: what the director installs comes with a configuration, and in the launcher's
        // folder its config.ini would replace the platform's.
        Path destination = Path.of(System.getProperty("rcp.data"), "provisioned");
        Object result = new DirectorApplication().run(new String[] {
                "-repository", installation.resolve("repository").toUri().toString(),
                // With the unit that says how bundles are installed; it is the same at every level.
                "-installIU", "tooling.osgi.bundle.default,sample.content/1.0.0." + Provisioning.level(),
                "-destination", destination.toString(),
                "-profile", "sample"});
        if (!EXIT_OK.equals(result)) {
            return result;
        }
        BundleContext bundles = FrameworkUtil.getBundle(Application.class).getBundleContext();
        new Provisioning(bundles.getService(bundles.getServiceReference(EnvironmentInfo.class)), System.out).run();
        return EXIT_OK;
    }

    @Override
    public void stop() {
        // The director cannot be interrupted.
    }
}
