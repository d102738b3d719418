#include "inspect/handoff/jre.h"

#include "inspect/handoff/own_code.h"
#include "inspect/quiet_read.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace rcp::inspect {
namespace {

// Where the classes of Java are that a JVM cannot start without: below HOME of HOME/bin/java and
// HOME/lib/server/libjvm.so, until Java 8 of HOME/jre and of HOME/lib/amd64/server/libjvm.so. The first is the
// usual one; the last are those of a JVM that lies as it was compiled.
std::vector<std::string> placesOfClasses(const std::filesystem::path& home) {
    return {home / "lib/modules", home / "lib/rt.jar", home / "jre/lib/rt.jar",
            home.parent_path() / "lib/rt.jar", home / "modules/java.base/java/lang/Object.class"};
}

// Of a JRE with its classes in an image, as since Java 9, the files without which no platform runs; each in one
// of several places.
std::vector<std::vector<std::string>> filesOfJre(const std::filesystem::path& home) {
    const std::string lib = home / "lib/lib";
    const std::string jvm = std::string("/libjvm") + kLibraryEnding;
    std::vector<std::vector<std::string>> all = {{home.string() + "/lib/server" + jvm,
                                                  home.string() + "/lib/client" + jvm,
                                                  home.string() + "/lib/minimal" + jvm}};
    for (const char* name : {"java", "jimage", "zip", "net", "nio"}) {
        all.push_back({lib + name + kLibraryEnding});
    }
    return all;
}

bool isImage(const std::string& file) {
    constexpr std::string_view kMark = "\xCA\xFE\xDA\xDA";
    const std::string start = readQuietly(file, kMark.size());
    return start == kMark || start == std::string(kMark.rbegin(), kMark.rend());
}

}  // namespace

std::optional<std::string> missingOfJre(const std::filesystem::path& home) {
    const auto isNothing = [](const std::string& file) { return readQuietly(file, 1).empty(); };
    const std::vector<std::string> classes = placesOfClasses(home);
    if (std::all_of(classes.begin(), classes.end(), isNothing)) {
        return classes.front();
    }
    if (!isImage(classes.front())) {
        return std::nullopt;
    }
    for (const std::vector<std::string>& places : filesOfJre(home)) {
        if (std::all_of(places.begin(), places.end(), isNothing)) {
            return places.front();
        }
    }
    // It may be a link into /etc, which a staged tree need not have.
    const std::filesystem::path settings = home / "conf/security/java.security";
    return entryNames(settings.parent_path()).contains(settings.filename())
               ? std::nullopt
               : std::optional<std::string>(settings);
}

}  // namespace rcp::inspect
