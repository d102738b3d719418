package sample.desktop;

import org.eclipse.ui.application.IWorkbenchWindowConfigurer;
import org.eclipse.ui.application.WorkbenchAdvisor;
import org.eclipse.ui.application.WorkbenchWindowAdvisor;

/** One window with one perspective. */
final class Advisor extends WorkbenchAdvisor {
    @Override
    public String getInitialWindowPerspectiveId() {
        return Perspective.ID;
    }

    @Override
    public WorkbenchWindowAdvisor createWorkbenchWindowAdvisor(IWorkbenchWindowConfigurer configurer) {
        return new WindowAdvisor(configurer);
    }
}
