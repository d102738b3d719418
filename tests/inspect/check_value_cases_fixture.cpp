#include "check_fixture.h"

namespace rcp::inspect {

std::vector<Case> placeholderCases() {
    return {
        {"RI301", "PropertyThatDoesNotExist", launcherHas("vmarg.a=-Da=${prop.nothing}\n"),
         launcherHas("vmarg.a=-Da=${prop.rcp.install.id}\n")},
        {"RI301", "UnknownKindOfPlaceholder", masterHas("osgi.splashPath=${home}\n"),
         masterHas("osgi.splashPath=${rcp.home}\n"), kMaster},
        {"RI301", "WorkspaceNamedByItself",
         differs(kLauncherProperties, "data=${rcp.home}", "data=${workspace.location}"),
         nothingChanges, kLauncherProperties, inAll(3)},
        {"RI301", "UnresolvedBesideAnUnsetVariable",
         launcherHas("vmarg.a=-D${env.RCP_TEST_NOT_SET}=${prop.nothing}\n"),
         launcherHas("vmarg.a=-D${env.RCP_TEST_NOT_SET}=a\n")},
        {"RI302", "VariableWithoutDefault", launcherHas("vmarg.a=-Da=${env.RCP_TEST_NOT_SET}\n"),
         launcherHas("vmarg.a=-Da=${env.RCP_TEST_NOT_SET,b}\n")},
        {"RI303", "PlaceholderThatBringsItselfBack",
         launcherHas("a=${prop.b}\nb=${prop.a}\nvmarg.a=-Da=${prop.a}\n"),
         launcherHas("a=${prop.b}\nb=c\nvmarg.a=-Da=${prop.a}\n"), kLauncherProperties, 3},
        {"RI304", "UnclosedPlaceholder", launcherHas("vmarg.a=-Da=${prop.cp\n"),
         launcherHas("cp=a\nvmarg.a=-Da=${prop.cp}\n")},
        {"RI305", "PlaceholderWhereNoneCounts", launcherHas("application=${rcp.home}\n"),
         launcherHas("vmarg.a=-Da=${rcp.home}\n")},
        {"RI305", "PlaceholderOfAnotherKindInTheJvm", launcherHas("vm=${env.HOME}/jre\n"),
         launcherHas("vm=${rcp.home}/jre\n")},
        {"RI305", "PlaceholderOfAnotherKindInAnExtension", launcherHas("config.k.1=${env.HOME}\n"),
         launcherHas("config.k.1=${rcp.home}\nconfig.k.2=-data\nconfig.k.3=${env.HOME}\n")},
    };
}

std::vector<Case> valueCases() {
    const Change dottedBase = differs(kLauncherProperties, "${rcp.home}/rcp/eclipse", "eclipse");
    return {
        {"RI306", "PercentInWhatTheUserGets", launcherHas("com.ovr.rcp.core.locale=a%%b\n"),
         launcherHas("com.ovr.rcp.core.locale=a%b\napplication=a%%b\n")},
        {"RI307", "VariableBetweenPercents", launcherHas("cp=%ProgramFiles%/a.jar\n"),
         launcherHas("cp=100%/a.jar:50%\n")},
        {"RI308", "TwoOptionsInOneValue", launcherHas("vmarg.a=-Xint -Xshare:off\n"),
         launcherHas("vmarg.a=-Da=b c\n")},
        {"RI308", "OptionAndValueInOneArgument", launcherHas("config.k.1=-nl en\n"),
         launcherHas("config.k.1=-nl\nconfig.k.2=en and -more\n")},
        {"RI309", "BlankInAKey", launcherHas("cp jar=a.jar\n"), launcherHas("cp = a.jar\n")},
        {"RI309", "ColonInAKey", launcherHas("cp:jar=a.jar\n"), launcherHas("-Xa:b=c\n")},
        {"RI310", "TabAtTheEndOfAValue", launcherHas("application=a\t\n"),
         launcherHas("application=a  \n")},
        {"RI311", "UnknownConfiguration", launcherHas("install.configuration=User\n"),
         launcherHas("install.configuration=user\n")},
        {"RI312", "ValueThatNobodyAsksFor", launcherHas("provisioning=TRUE\n"),
         launcherHas("provisioning=false\n")},
        {"RI313", "RelativeBaseLocation", dottedBase, nothingChanges, kLauncherProperties,
         inAll(2)},
    };
}

}  // namespace rcp::inspect
