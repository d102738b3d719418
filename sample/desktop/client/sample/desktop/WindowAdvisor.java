package sample.desktop;

import org.eclipse.core.runtime.Platform;
import org.eclipse.swt.graphics.Point;
import org.eclipse.ui.application.ActionBarAdvisor;
import org.eclipse.ui.application.IActionBarConfigurer;
import org.eclipse.ui.application.IWorkbenchWindowConfigurer;
import org.eclipse.ui.application.WorkbenchWindowAdvisor;

final class WindowAdvisor extends WorkbenchWindowAdvisor {
    private static final String TITLE = "Velmo Sample";

    WindowAdvisor(IWorkbenchWindowConfigurer configurer) {
        super(configurer);
    }

    @Override
    public ActionBarAdvisor createActionBarAdvisor(IActionBarConfigurer configurer) {
        return new FileMenu(configurer);
    }

    @Override
    public void preWindowOpen() {
        IWorkbenchWindowConfigurer window = getWindowConfigurer();
        window.setInitialSize(new Point(960, 720));
        window.setShowCoolBar(false);
        window.setShowStatusLine(false);
        // "sample.desktop/title=..." in a plug-in customization gives it another one.
        window.setTitle(Platform.getPreferencesService().getString("sample.desktop", "title", TITLE, null));
    }
}
