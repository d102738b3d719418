package sample.desktop;

import org.eclipse.core.runtime.Platform;
import org.eclipse.equinox.app.IApplication;
import org.eclipse.equinox.app.IApplicationContext;
import org.eclipse.swt.widgets.Display;
import org.eclipse.ui.PlatformUI;

import sample.report.CommandLine;

/**
 * The desktop client. A launcher that found it running starts it once more with "-useDaemon": that one raises
 * the first window and ends. It never opens one: nobody would find it, and the workspace would have two.
 */
public final class Application implements IApplication {
    private static final Integer EXIT_NO_WINDOW = 1;

    @Override
    public Object start(IApplicationContext context) throws Exception {
        Requests requests = new Requests(Platform.getInstanceLocation());
        String first = CommandLine.last(Platform.getCommandLineArgs(), "-useDaemon");
        if (first == null) {
            return showWindow(requests);
        }
        Requests.Fate fate = requests.send(Requests.RAISE, ProcessHandle.of(Long.parseLong(first)));
        context.applicationRunning(); // takes the splash down
        return endAsSecond(first, fate);
    }

    private static Object endAsSecond(String first, Requests.Fate fate) {
        if (fate == Requests.Fate.TAKEN) {
            System.out.println("The client runs already; its window was raised.");
            return EXIT_OK;
        }
        System.err.println(fate == Requests.Fate.LOST
                ? "The client ran already, as process " + first + ", and has ended. Start it again."
                : "The client runs already, as process " + first + ", and does not answer. End it and start it again.");
        System.setProperty("eclipse.exitdata", ""); // what the launcher library would say besides: the command line
        return EXIT_NO_WINDOW;
    }

    private static Object showWindow(Requests requests) throws Exception {
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
