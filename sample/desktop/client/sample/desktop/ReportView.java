package sample.desktop;

import java.io.ByteArrayOutputStream;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;

import org.eclipse.jface.resource.JFaceResources;
import org.eclipse.osgi.service.environment.EnvironmentInfo;
import org.eclipse.swt.SWT;
import org.eclipse.swt.widgets.Composite;
import org.eclipse.swt.widgets.Text;
import org.eclipse.ui.part.ViewPart;
import org.osgi.framework.BundleContext;
import org.osgi.framework.FrameworkUtil;

import sample.report.Report;

/** Shows what the platform was started with. */
public final class ReportView extends ViewPart {
    static final String ID = "sample.desktop.report";

    private Text text;

    @Override
    public void createPartControl(Composite parent) {
        text = new Text(parent, SWT.MULTI | SWT.READ_ONLY | SWT.V_SCROLL | SWT.H_SCROLL);
        text.setFont(JFaceResources.getTextFont());
        text.setText(report().stripLeading());
    }

    @Override
    public void setFocus() {
        text.setFocus();
    }

    private static String report() {
        BundleContext context = FrameworkUtil.getBundle(ReportView.class).getBundleContext();
        EnvironmentInfo platform = context.getService(context.getServiceReference(EnvironmentInfo.class));
        ByteArrayOutputStream bytes = new ByteArrayOutputStream();
        new Report(platform, new PrintStream(bytes, true, StandardCharsets.UTF_8)).print();
        String report = bytes.toString(StandardCharsets.UTF_8);
        System.out.println(report); // for whoever started this from a terminal
        return report;
    }
}
