package sample.provisioning;

import java.io.File;

import org.eclipse.equinox.p2.publisher.AbstractPublisherApplication;
import org.eclipse.equinox.p2.publisher.IPublisherAction;
import org.eclipse.equinox.p2.publisher.eclipse.BundlesAction;
import org.eclipse.equinox.p2.publisher.eclipse.DefaultCUsAction;

/** Makes the repository of a level from the bundles in the folder behind "-source", when the sample is made. */
public final class Publisher extends AbstractPublisherApplication {
    private static final String FLAVOR = "tooling";
    private static final int START_LEVEL = 4;

    @Override
    protected IPublisherAction[] createActions() {
        return new IPublisherAction[] {
                new BundlesAction(new File[] {new File(source)}),
                // The unit "tooling.osgi.bundle.default", which says how a bundle is installed: without it the
                // director takes a bundle into its records and puts nothing in place.
                new DefaultCUsAction(info, FLAVOR, START_LEVEL, false)};
    }
}
