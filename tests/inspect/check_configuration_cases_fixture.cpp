// What is examined of the platform's own configuration.
#include "check_fixture.h"

#include <filesystem>

namespace rcp::inspect {
namespace {

const std::string kBaseOfBundles = kBaseFolder;
constexpr char kList[] = "rcp/eclipse/plugins/com.ovr.rcp.base/configuration/bundles.info";

Change isCalled(const std::string& file, const std::string& name) {
    return [=](const Maker& maker) {
        std::filesystem::rename(maker.folder().path() / file, maker.folder().path() / name);
    };
}

Change isLonger(const std::string& file) {
    return [=](const Maker& maker) {
        std::filesystem::resize_file(maker.folder().path() / file, 17U << 20U);
    };
}

std::vector<Case> frameworkCases() {
    const Change named = configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n");
    // Both where the entry stands and in the jar's directory.
    const Change hasNoStarter = both(differs(kFrameworkJar, "/EclipseStarter", "/EclipseStopper"),
                                     differs(kFrameworkJar, "/EclipseStarter", "/EclipseStopper"));
    return {
        {"RI803", "FolderAsFramework",
         both(named, isFolderWith(kFrameworkJar, "META-INF/MANIFEST.MF")),
         both(named, both(isFolderWith(kFrameworkJar, "eclipse.properties"),
                          has(kFrameworkJar + "/META-INF/MANIFEST.MF", ""))),
         kConfigIni, inAll(1)},
        {"RI804", "FrameworkWithoutTheClassThatIsStarted", both(named, hasNoStarter),
         both(named, both(configHas("osgi.frameworkClassPath=.,x.jar\n"), hasNoStarter)),
         kConfigIni, inAll(1)},
        {"RI805", "FrameworkThatIsNotNamedAndHasNoVersion",
         isCalled(kFrameworkJar, kBaseOfBundles + "/plugins/org.eclipse.osgi.jar"),
         isCalled(kFrameworkJar, kBaseOfBundles + "/plugins/org.eclipse.osgi"), kConfigIni,
         inAll(0)},
    };
}

std::vector<Case> settingsCases() {
    const Change namesBundle = configHas("osgi.bundles=a.bundle@start\n");
    return {
        {"RI803", "EmptyFolderAsBundle",
         both(namesBundle, isFolderWith(kBaseOfBundles + "/plugins/a.bundle_1.2", "about.html")),
         both(namesBundle,
              isFolderWith(kBaseOfBundles + "/plugins/a.bundle_1.2", "META-INF/MANIFEST.MF")),
         kConfigIni, inAll(1)},
        {"RI803", "FolderThatIsCalledAsAJar",
         both(namesBundle,
              isFolderWith(kBaseOfBundles + "/plugins/a.bundle.jar", "META-INF/MANIFEST.MF")),
         both(configHas("osgi.bundles=reference:file:a.bundle.jar@start\n"),
              isFolderWith(kBaseOfBundles + "/plugins/a.bundle.jar", "META-INF/MANIFEST.MF")),
         kConfigIni, inAll(1)},
        {"RI811", "EscapeThatIsNone", configHas("a=b\nc=\\u00g\n"),
         configHas("#\\u\na=b\nc=\\u00ff\n"), kConfigIni, inAll(2)},
        {"RI811", "EscapeThatIsNoneInWhatIsInherited",
         has(kInheritedConfiguration, "c=C:\\users\n"),
         both(configHas("osgi.configuration.cascaded=false\n"),
              has(kInheritedConfiguration, "c=C:\\users\n")),
         kInheritedConfiguration, inAll(2)},
        {"RI812", "EmptyListOfBundles", configHas("osgi.bundles= ,\n"),
         configHas("osgi.bundles=,org.eclipse.osgi\n"), kConfigIni, inAll(1)},
        {"RI812", "FolderInPlaceOfTheUsersCopy", has("workspace/.config/config.ini/a", ""),
         both(has("workspace/.config/config.ini/a", ""),
              has("workspace/.config/rcpinstall.properties", "rcp.install.id=other\n")),
         "workspace/.config/config.ini", inAll(0)},
        {"RI812", "NothingThatNamesBundles", lacks(kInheritedConfiguration),
         both(lacks(kInheritedConfiguration),
              launcherHas("vmarg.b=-Dosgi.bundles=org.eclipse.osgi\n")),
         kConfigIni, inAll(0)},
        {"RI812", "BundlesThatAreNotInherited", configHas("osgi.configuration.cascaded=false\n"),
         configHas("osgi.configuration.cascaded=false\neclipse.ignoreApp=true\n"), kConfigIni,
         inAll(0)},
        {"RI813", "ConfigurationOfManyMegabytes", isLonger(kConfigIni), nothingChanges, kConfigIni,
         inAll(0)},
    };
}

std::vector<Case> bundleCases() {
    const Change hasBundle = isStandIn(kBaseOfBundles + "/plugins/a.bundle_1.2.jar", "standin.jar");
    const std::string configurator =
        "osgi.bundles=reference:file:org.eclipse.equinox."
        "simpleconfigurator.jar@1:start\norg.eclipse.equinox."
        "simpleconfigurator.configUrl=file:bundles.info\n";
    const Change hasList =
        both(isStandIn(kBaseOfBundles + "/plugins/org.eclipse.equinox.simpleconfigurator.jar",
                       "standin.jar"),
             both(configHas(configurator), hasBundle));
    std::string manyBundles;
    for (int i = 0; i < 1000; ++i) {
        manyBundles += "a.bundle@start,";
    }
    return {
        {"RI805", "NoFramework", lacks(kFrameworkJar), nothingChanges, kConfigIni, inAll(0)},
        {"RI805", "NoFrameworkAsItIsNamed", configHas("a=b\nosgi.framework=file:nothing.jar\n"),
         configHas("osgi.framework=file:plugins/org.eclipse.osgi_1.0.jar\n"), kConfigIni, inAll(2)},
        {"RI805", "FrameworkWithoutScheme",
         configHas("osgi.framework=plugins/org.eclipse.osgi_1.0.jar\n"),
         [](const Maker& maker) {
             maker.append(kConfigIni,
                          "osgi.framework=" + maker.folder().narrow(kFrameworkJar) + "\n");
         },
         kConfigIni, inAll(1)},
        {"RI805", "NoBundleOfThatName", both(hasBundle, configHas("osgi.bundles=a.bundl@start\n")),
         both(hasBundle, configHas("osgi.bundles=a.bundle@start\n")), kConfigIni, inAll(1)},
        {"RI805", "NoBundleOfThatPath",
         both(hasBundle, configHas("osgi.bundles=a.bundle, file:a.bundle.jar\n")),
         both(hasBundle, configHas("osgi.bundles=a.bundle, file:a.bundle_1.2.jar\n")), kConfigIni,
         inAll(1)},
        // Its line is longer than the launcher's reader takes.
        {"RI805", "NoBundleOfThatNameInTheUsersCopy",
         has("workspace/.config/config.ini", "osgi.bundles=a.bundl\n"),
         both(has("workspace/.config/config.ini", "osgi.bundles=a.bundl\n"),
              has("workspace/.config/rcpinstall.properties", "rcp.install.id=other\n")),
         "workspace/.config/config.ini", inAll(1)},
        {"RI805", "NoBundleAtTheEndOfALongList",
         both(hasBundle, configHas("osgi.bundles=" + manyBundles + "nothing\n")),
         both(hasBundle, configHas("osgi.bundles=" + manyBundles + "a.bundle\n")), kConfigIni,
         inAll(1)},
        {"RI805", "NoListOfBundles", hasList, both(hasList, has(kList, "# none\n")), kConfigIni,
         inAll(0)},
        {"RI805", "NoListOfBundlesInTheSharedConfiguration",
         both(both(hasList, has(kList, "# none\n")),
              configHas("osgi.sharedConfiguration.area=file:/usr\n")),
         both(hasList, has(kList, "# none\n")), kConfigIni, inAll(0)},
        {"RI805", "NoBundleOfTheList",
         both(hasList, has(kList, "# of two\na,1,plugins/nothing.jar,4,false\n")),
         both(hasList, has(kList, "# of two\na,1,plugins/a.bundle_1.2.jar,4,false\n")), kList,
         inAll(2)},
        {"RI813", "ListOfBundlesOfManyMegabytes",
         both(hasList, both(has(kList, "# none\n"), isLonger(kList))),
         both(hasList, has(kList, "# none\n")), kList, inAll(0)},
        {"RI806", "StartLevelThatIsNoNumber",
         both(hasBundle, configHas("osgi.bundles=a.bundle@4x:start\n")),
         both(hasBundle, configHas("osgi.bundles=a.bundle@4:start\n")), kConfigIni, inAll(1)},
        {"RI806", "StartLevelBeyondTheLast",
         both(hasBundle, configHas("osgi.bundles=a.bundle@7:start\n")),
         both(hasBundle, configHas("osgi.bundles=a.bundle@7:start\nosgi.startLevel=7\n")),
         kConfigIni, inAll(1)},
        {"RI806", "UsualStartLevelBeyondTheLast",
         both(hasBundle, configHas("osgi.bundles=a.bundle@start\nosgi.startLevel=3\n")),
         both(hasBundle,
              configHas("osgi.bundles=a.bundle@3:start, org.eclipse.osgi\nosgi.startLevel=3\n")),
         kConfigIni, inAll(1)},
        {"RI806", "UsualStartLevelThatIsNone", configHas("osgi.bundles.defaultStartLevel=0\n"),
         configHas("osgi.bundles.defaultStartLevel=1\n"), kConfigIni, inAll(1)},
        {"RI807", "InstallAreaThatIsNoFolder", launcherHas("-Dosgi.install.area=/no/such\n"),
         launcherHas("-Dosgi.install.area=@none\n")},
        {"RI807", "InstallAreaThatIsReadTooLate",
         configHas("osgi.configuration.cascaded=false\nosgi.bundles=org.eclipse.osgi\nosgi.install."
                   "area=/no/such\n"),
         configHas("osgi.install.area=/no/such\n"), kConfigIni, inAll(3)},
        {"RI807", "SharedConfigurationThatIsNoFolder",
         configHas("osgi.sharedConfiguration.area=file:/no/such\n"),
         configHas("osgi.sharedConfiguration.area=file:/\n"), kConfigIni, inAll(1)},
    };
}

}  // namespace

std::vector<Case> configurationCases() {
    std::vector<Case> all = frameworkCases();
    for (const auto& group : {settingsCases(), bundleCases()}) {
        all.insert(all.end(), group.begin(), group.end());
    }
    return all;
}

}  // namespace rcp::inspect
