package sample.desktop;

import java.util.Arrays;

import org.eclipse.core.runtime.Platform;
import org.eclipse.equinox.app.IApplication;
import org.eclipse.equinox.app.IApplicationContext;
import org.eclipse.swt.widgets.Display;
import org.eclipse.ui.PlatformUI;

/**
 * The desktop client. A launcher that found it running starts it once more with "-useDaemon": that one raises
 * the first window and ends.
 */
public final class Application implements IApplication {
    @Override
    public Object start(IApplicationContext context) throws Exception {
        Requests requests = new Requests(Platform.getInstanceLocation());
        boolean isSecond = Arrays.asList(Platform.getCommandLineArgs()).contains("-useDaemon");
        if (isSecond && requests.send(Requests.RAISE)) {
            context.applicationRunning(); // takes the splash down
            System.out.println("The client runs already; its window was raised.");
            return EXIT_OK;
        }
        Display display = PlatformUI.createDisplay();
        try (AutoCloseable listening = requests.listen(what -> display.asyncExec(() -> Commands.run(what)))) {
            int end = PlatformUI.createAndRunWorkbench(display, new Advisor());
            return end == PlatformUI.RETURN_RESTART ? EXIT_RESTART : EXIT_OK;
        } finally {
            display.dispose();
        }
    }

    @Override
    public void stop() {
        if (PlatformUI.isWorkbenchRunning()) {
            PlatformUI.getWorkbench().getDisplay().syncExec(() -> PlatformUI.getWorkbench().close());
        }
    }
}
