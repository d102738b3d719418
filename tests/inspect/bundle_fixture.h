// An application bundle in which nothing is wrong, to be spoiled.
#pragma once

#include "inspect/options.h"
#include "mach_o_fixture.h"
#include "tests/unit/fixture.h"

#include <cstdint>
#include <string>

namespace rcp::inspect {

inline const std::string kContents = "Velmo.app/Contents";
inline const std::string kProgram = kContents + "/MacOS/rcplauncher";
inline const std::string kInfo = kContents + "/Info.plist";
inline const std::string kRestart = kContents + "/MacOS/rcplauncher.plist";  // a link
inline const std::string kRestartFile = kContents + "/Resources/rcplauncher.plist";
inline const std::string kSeal = kContents + "/_CodeSignature/CodeResources";
inline const std::string kProperties = kContents + "/Eclipse/rcp/rcplauncher.properties";
inline const std::string kBase = kContents + "/Eclipse/rcp/eclipse/plugins/com.ovr.rcp.base";
inline const std::string kEclipse = kBase + "/macosx/x86/eclipse";
inline const std::string kLibrary = kBase + "/macosx/x86/eclipse_1615.so";
inline const std::string kJvm = kContents + "/jre/Contents/Home/lib/server/libjvm.dylib";

/// Code of that type (2: a program, 6: a library) for one processor, and for both.
MachO code(std::uint32_t type, std::uint32_t processor = 0x01000007);
std::string forBoth(MachO file);

class AppBundle {
  public:
    AppBundle();

    void write(const std::string& name, const std::string& content) const;
    void writeProgram(const std::string& name, const std::string& content) const;
    void link(const std::string& target, const std::string& name) const;
    /// Puts `to` in the place of the first `from`, which must be there.
    void replace(const std::string& name, const std::string& from, const std::string& to) const;
    void remove(const std::string& name) const;
    void forbidExecution(const std::string& name) const;

    [[nodiscard]] Options options() const;
    [[nodiscard]] const rcp::test::TestFolder& folder() const { return folder_; }

  private:
    rcp::test::TestFolder folder_;
};

}  // namespace rcp::inspect
