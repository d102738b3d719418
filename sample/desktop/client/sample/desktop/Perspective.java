package sample.desktop;

import org.eclipse.ui.IPageLayout;
import org.eclipse.ui.IPerspectiveFactory;

/** The report, over the whole window. */
public final class Perspective implements IPerspectiveFactory {
    static final String ID = "sample.desktop.perspective";

    @Override
    public void createInitialLayout(IPageLayout layout) {
        layout.setEditorAreaVisible(false);
        layout.setFixed(true);
        layout.addStandaloneView(ReportView.ID, true, IPageLayout.LEFT, 1.0f, layout.getEditorArea());
        layout.getViewLayout(ReportView.ID).setCloseable(false);
    }
}
