#include "check_fixture.h"

namespace rcp::inspect {

std::vector<Case> keyCases() {
    const Change noId = differs(kLauncherProperties, "rcp.install.id=test\n", "");
    const Change noBase = differs(kLauncherProperties, "rcp.base.location", "#");
    return {
        {"RI201", "NoInstallId", noId, both(noId, launcherHas("install.configuration=userpb\n")),
         kLauncherProperties, inAll(0)},
        {"RI201", "NoBaseLocation", noBase, nothingChanges, kLauncherProperties, inAll(0)},
        {"RI201", "NoPluginCustomization", differs(kLauncherProperties, "plugincustom", "#"),
         nothingChanges, kLauncherProperties, inAll(0)},
        {"RI201", "ProvisioningWithoutItsApplication", launcherHas("provisioning=true\n"),
         launcherHas("provisioning=true\nprovisioning.application=p\n"), kLauncherProperties,
         inAll(0)},
        {"RI201", "ProvisioningOfAKindThatProvisions", launcherHas("provisioning=true\n"),
         launcherHas("provisioning=true\ninstall.configuration=serial.multiuser\n"),
         kLauncherProperties, inAll(0)},
        {"RI202", "KeyThatNobodyReads", launcherHas("colour=red\n"),
         launcherHas("colour=red\nvmarg.a=-Da=${prop.colour}\n")},
        {"RI202", "MisspeltPrefix", launcherHas("vmargs.a=-Da=b\n"),
         launcherHas("vmarg.a=-Da=b\n")},
        {"RI202", "VariableWithoutName", launcherHas("env.setNAME=b\n"),
         launcherHas("env.set.NAME=b\n")},
        {"RI202", "ExtensionNumberWithLeadingZero", launcherHas("config.k.01=-nl\n"),
         launcherHas("config.k.1=-nl\n")},
        {"RI202", "MisspeltKeyOfTheUsers", masterHas("osgi.splashpath=a\n"),
         masterHas("osgi.splashPath=a\nthe.platforms.own=b\n"), kMaster},
        {"RI203", "KeyOfTheUsersFileInAnother", launcherHas("osgi.splashPath=/a\n"),
         masterHas("osgi.splashPath=/a\n")},
        {"RI203", "KeyOfTheLaunchersFileInTheJvms", jvmHas("jvm.location=/a\n"), jvmHas("-Da=b\n"),
         kJvmProperties},
        {"RI204", "KeyTwice", launcherHas("cp=a\ncp=b\n"), launcherHas("cp=a\nCP=b\n"),
         kLauncherProperties, 2},
        {"RI204", "JvmArgumentTwice", launcherHas("vmarg.a=-Da=b\nvmarg.a=-Da=c\n"),
         launcherHas("vmarg.a=-Da=b\nvmarg.b=-Db=c\n"), kLauncherProperties, 2},
        {"RI204", "KeyTwiceForTheUser", masterHas("product.macosx=other\n"),
         masterHas("product.win32=other\n"), kMaster},
        {"RI205", "EntryWithoutKey", launcherHas("=value\n"), launcherHas("application=value\n")},
        {"RI206", "EntryHiddenBehindAnEmptyKey", launcherHas("=value\n-Da=b\n"),
         launcherHas("-Da=b\n=value\n"), kLauncherProperties, 2},
        {"RI206", "EntryHiddenBehindAnEmptyKeyOfAnotherFile",
         both(launcherHas("=x\n"), jvmHas("-Xint\n")),
         both(launcherHas("=x\n"), jvmHas("vmarg.a=-Xint\n")), kJvmProperties},
        {"RI206", "EntryHiddenFromReset", masterHas("=x\nresetDir.1=a\n"),
         masterHas("resetDir.1=a\n=x\n"), kMaster, 2},
        {"RI207", "KeyThatAnEarlierFileHolds",
         both(launcherHas("java.home=/a\n"), jvmHas("java.home=/b\n")), jvmHas("java.home=/b\n"),
         kJvmProperties},
        {"RI208", "KeyThatTheLauncherAppends", masterHas("rcp.install.id=old\n"),
         masterHas("rcp.install.id=test\n"), kMaster},
        {"RI209", "KeyForAnotherSystemAlone", masterHas("personality.win32=p\n"),
         masterHas("personality.win32=p\npersonality.macosx=q\n"), kMaster},
        {"RI209", "KeyForLinuxAlone", masterHas("personality.linux=p\n"),
         masterHas("personality.macosx=p\n"), kMaster},
        {"RI210", "QualifierInTheLaunchersFile", launcherHas("application.macosx=a\n"),
         launcherHas("config.k.restartExe.macosx=${rcp.home}/rcp/rcplauncher\n")},
    };
}

}  // namespace rcp::inspect
