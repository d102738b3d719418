package sample.desktop;

import java.io.IOException;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

import org.eclipse.jface.dialogs.MessageDialog;
import org.eclipse.swt.widgets.Shell;
import org.eclipse.ui.IWorkbenchWindow;
import org.eclipse.ui.PlatformUI;

/** What the client can be asked for, from its File menu or from outside. */
final class Commands {
    /** The label has its key behind "&". */
    record Item(String label, Runnable command) {}

    /** By the name that a request has; the menu has them in this order. */
    static final Map<String, Item> MENU = new LinkedHashMap<>();

    static {
        MENU.put("restart", new Item("&Restart", () -> PlatformUI.getWorkbench().restart()));
        MENU.put("relaunch", new Item("Re&launch", () -> launchAfterThis()));
        MENU.put("reset", new Item("R&eset", () -> launchAfterThis("-resetconfig")));
        MENU.put("quit", new Item("&Quit", () -> PlatformUI.getWorkbench().close()));
    }

    private Commands() {}

    /** A window that is only on its way needs no raising, and cannot be closed yet. */
    static void run(String name) {
        if (!PlatformUI.isWorkbenchRunning()) {
            return;
        }
        if (name.equals(Requests.RAISE)) {
            raise();
        } else if (MENU.containsKey(name)) {
            MENU.get(name).command().run();
        }
    }

    private static void raise() {
        for (IWorkbenchWindow window : PlatformUI.getWorkbench().getWorkbenchWindows()) {
            Shell shell = window.getShell();
            shell.setMinimized(false);
            shell.moveAbove(null);
            shell.forceActive();
        }
        System.out.println("The window was raised for another start.");
    }

    /** The launcher waits until this process, which it gets the id of, has ended. */
    private static void launchAfterThis(String... arguments) {
        List<String> command = new ArrayList<>(List.of(System.getProperty("rcp.home") + "/rcp/rcplauncher",
                "-restart", "-rcp_old_pid", Long.toString(ProcessHandle.current().pid()),
                "-data", System.getProperty("rcp.data")));
        command.addAll(List.of(arguments));
        try {
            new ProcessBuilder(command).inheritIO().start();
            PlatformUI.getWorkbench().close();
        } catch (IOException failure) {
            MessageDialog.openError(null, "Not relaunched", failure.getMessage());
        }
    }
}
