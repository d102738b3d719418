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
        Commands.MENU.values().forEach(item -> file.add(action(item)));
        bar.add(file);
    }

    private static Action action(Commands.Item item) {
        return new Action(item.label()) {
            @Override
            public void run() {
                item.command().run();
            }
        };
    }
}
