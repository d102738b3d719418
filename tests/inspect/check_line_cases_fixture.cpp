#include "check_fixture.h"

namespace rcp::inspect {

std::vector<Case> lineCases() {
    const std::string tooLong = "cp=" + std::string(2022, 'x') + "\n";
    const std::string longest = "cp=" + std::string(2021, 'x') + "\n";
    return {
        {"RI101", "LinesWithCarriageReturn", launcherHas("application=a\r\n"),
         launcherHas("application=a\n")},
        {"RI102", "ContinuationLostToCarriageReturn", launcherHas("cp=a\\\r\nb\r\n"),
         launcherHas("cp=a\r\npersonality=b\r\n")},
        {"RI103", "ByteOrderMark", differs(kJvmProperties, "jvm", "\xEF\xBB\xBFjvm"),
         nothingChanges, kJvmProperties, inAll(1)},
        {"RI104", "LineThatIsNotUtf8", launcherHas("application=\xE4\n"),
         launcherHas("application=\xC3\xA4\n")},
        {"RI105", "LineOverTheLimit", launcherHas(tooLong), launcherHas(longest)},
        {"RI105", "LineOfTheMasterThatComesInManyPieces",
         masterHas("provisioning.manifest.version=" + std::string(100000, '1') + "\n"),
         masterHas("provisioning.manifest.version=1\n"), kMaster},
        {"RI106", "ContinuationAtTheEnd", launcherHas("application=a\\\n"),
         launcherHas("application=a\\\nb\n")},
        {"RI106", "ContinuationAtTheEndInFrontOfAComment", launcherHas("cp=a\\\n# end\n"),
         launcherHas("cp=a\n# end\\\n")},
        {"RI107", "NulEscape", launcherHas("application=a\\u0000b\n"),
         launcherHas("application=a\\u0041b\n")},
        {"RI107", "FolderThatIsANulEscape", launcherHas("cp=C:\\users\n"),
         launcherHas("cp=C:\\\\users\n")},
        {"RI107", "NulEscapeOnAContinuationLine", launcherHas("application=a\\\nb\\u0000c\n"),
         launcherHas("application=a\\\nb\\u0043\n"), kLauncherProperties, 2},
        {"RI108", "NulByte", launcherHas(std::string("application=a\0b\n", 16)),
         launcherHas("application=ab\n")},
        {"RI109", "SeparatorLostOnAContinuationLine", launcherHas("cp=a\\\n=b\n"),
         launcherHas("cp=a=\\\nb\n"), kLauncherProperties, 2},
        {"RI110", "EntrySwallowedByTheLineInFront", launcherHas("cp=C:/x\\\npersonality=p\n"),
         launcherHas("cp=C:/x\npersonality=p\n"), kLauncherProperties, 2},
        {"RI111", "BackslashThatGoesAway", launcherHas("cp=C:\\temp\n"),
         launcherHas("cp=C:\\\\temp\n")},
        {"RI111", "TripleBackslashOfWhichOneGoesAway", launcherHas("cp=C:\\\\\\temp\n"),
         launcherHas("cp=a\\:b\\ c\\u0041\n")},
    };
}

}  // namespace rcp::inspect
