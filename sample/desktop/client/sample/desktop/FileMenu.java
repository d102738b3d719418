package sample.desktop;

import org.eclipse.jface.action.Action;
import org.eclipse.jface.action.IMenuManager;
import org.eclipse.jface.action.MenuManager;
import org.eclipse.ui.application.ActionBarAdvisor;
import org.eclipse.ui.application.IActionBarConfigurer;

/** The ways to end this client and to come back. */
final class FileMenu extends ActionBarAdvisor {
    FileMenu(IActionBarConfigurer configurer) {
        super(configurer);
    }

    @Override
    protected void fillMenuBar(IMenuManager bar) {
        IMenuManager file = new MenuManager("&File", "file");
        Commands.MENU.forEach((name, command) -> file.add(item(name, command)));
        bar.add(file);
    }

    private static Action item(String name, Runnable command) {
        return new Action("&" + Character.toUpperCase(name.charAt(0)) + name.substring(1)) {
            @Override
            public void run() {
                command.run();
            }
        };
    }
}
