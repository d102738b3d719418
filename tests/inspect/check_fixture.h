// A small installation in which check finds nothing, and changes to it.
#pragma once

#include "inspect/check/finding.h"
#include "inspect/options.h"
#include "tests/unit/fixture.h"

#include <functional>
#include <string>
#include <vector>

namespace rcp::inspect {

inline constexpr char kLauncherProperties[] = "rcp/rcplauncher.properties";
inline constexpr char kJvmLibrary[] = "jre/lib/server/libjvm.so";
inline constexpr char kClasses[] = "jre/lib/modules";
inline constexpr char kJvmProperties[] = "jre/lib/jvm.properties";
inline constexpr char kDefaultJvmProperties[] = "rcp/deploy/jvm.properties";
inline constexpr char kBaseFolder[] = "rcp/eclipse/plugins/com.ovr.rcp.base";
// What the platform's configuration has for those that name nothing themselves.
inline constexpr char kInheritedConfiguration[] =
    "rcp/eclipse/plugins/com.ovr.rcp.base/configuration/config.ini";
inline constexpr char kConfigIni[] = "rcp/eclipse/plugins/com.ovr.rcp.base/config/user/config.ini";
inline const std::string kFrameworkJar =
    std::string(kBaseFolder) + "/plugins/org.eclipse.osgi_1.0.jar";
inline constexpr char kMaster[] =
    "rcp/eclipse/plugins/com.ovr.rcp.base/config/user/rcpinstall.properties";

/// The installation. Every file ends in a line feed.
class Maker {
  public:
    Maker();
    /// One of the files that the stand-in platform is made of.
    void place(const std::string& file, const std::string& standIn) const;
    void append(const std::string& file, const std::string& text) const;
    void replace(const std::string& file, const std::string& from, const std::string& to) const;
    void remove(const std::string& file) const;
    void setExecutable(const std::string& file, bool isExecutable) const;
    [[nodiscard]] std::vector<Finding> check() const;
    [[nodiscard]] Options options() const;
    [[nodiscard]] const rcp::test::TestFolder& folder() const { return folder_; }
    /// The number of lines of a file.
    [[nodiscard]] std::size_t lineCount(const std::string& file) const;

  private:
    rcp::test::TestFolder folder_;
};

using Change = std::function<void(const Maker&)>;

/// Lines for one of the property files.
Change launcherHas(const std::string& text);
Change jvmHas(const std::string& text);
Change masterHas(const std::string& text);
Change has(const std::string& file, const std::string& text);
Change lacks(const std::string& file);
Change differs(const std::string& file, const std::string& from, const std::string& to);
Change isLinkToItself(const std::string& file);
Change isNotExecutable(const std::string& file);
/// Lines for the master of the platform's configuration.
Change configHas(const std::string& text);
/// A folder in place of a file, with that file in it.
Change isFolderWith(const std::string& folder, const std::string& file);
Change isStandIn(const std::string& file, const std::string& standIn);
Change both(const Change& first, const Change& second);
void nothingChanges(const Maker& maker);

/// One finding: an installation that has it, and one like it that has not.
struct Case {
    const char* code;
    const char* name;  // what the first installation has
    Change with;
    Change without = nothingChanges;
    const char* file = kLauncherProperties;  // where the finding is
    long line = 1;                           // behind the lines that every installation has
};

/// For Case::line: a line counted from the file's beginning; 0 is the file as a whole.
constexpr long inAll(long line) {
    return -1 - line;
}

/// The cases of all groups.
std::vector<Case> lineCases();
std::vector<Case> keyCases();
std::vector<Case> valueCases();
std::vector<Case> placeholderCases();
std::vector<Case> jvmCases();
std::vector<Case> extensionCases();
std::vector<Case> fileCases();
std::vector<Case> handOffCases();  // with those of the platform's configuration
std::vector<Case> configurationCases();

}  // namespace rcp::inspect
