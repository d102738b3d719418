#include "launcher/user_area/unfinished_files.h"

#include "base/system_calls.h"
#include "tests/unit/user_area/user_area_fixture.h"

#include <errno.h>

namespace rcp::test {
namespace {

namespace fs = std::filesystem;

std::string_view stays;

class UnfinishedFiles : public UserAreaTest {};

TEST_F(UnfinishedFiles, OfAKilledLaunchGo) {
    for (const char* name :
         {"platform.xml.old.tmp", "registry.old.tmp", "bookmarks.xml.old.tmp",
          "applications/eclipse/.eclipseextension.tmp", ".config/args.properties.tmp",
          ".config/config.ini.tmp", ".config/rcpinstall.properties.tmp",
          ".config/rcpinstall.properties.tmp.tmp", ".config/rcpinstall.properties.new",
          ".config/org.eclipse.update/platform.xml.tmp"}) {
        folder_.write(std::string("ws/") + name, "half");
    }
    EXPECT_TRUE(removeUnfinishedFiles(workspace(), configuration()));
    EXPECT_FALSE(hasTemporaryName());
}

TEST_F(UnfinishedFiles, ThatAreTheUsersStay) {
    const std::string names[] = {"ws/mine.tmp", "ws/registry.old", "ws/.config/mine.new",
                                 "ws/.config/args.properties", "ws/.config/config.ini"};
    for (const std::string& name : names) {
        folder_.write(name, "kept");
    }
    EXPECT_TRUE(removeUnfinishedFiles(workspace(), configuration()));
    for (const std::string& name : names) {
        EXPECT_EQ(folder_.read(name), "kept");
    }
}

TEST_F(UnfinishedFiles, MayBeNone) {
    EXPECT_TRUE(removeUnfinishedFiles(folder_.wide("none"), folder_.wide("none/.config")));
    EXPECT_FALSE(folder_.has("none"));
}

TEST_F(UnfinishedFiles, ThatCannotBeRemovedAreToldAndTheOthersGo) {
    SystemCalls calls = systemCalls;
    calls.unlink = [](const char* path) {
        errno = EIO;
        return std::string_view(path).ends_with(stays) ? -1 : kSystemsOwnCalls.unlink(path);
    };
    const InstalledCalls installed(calls);
    for (const char* name :
         {"ws/platform.xml.old.tmp", "ws/.config/org.eclipse.update/platform.xml.tmp"}) {
        stays = name;
        folder_.write("ws/registry.old.tmp", "half");
        folder_.write("ws/.config/config.ini.tmp", "half");
        folder_.write(name, "half");
        EXPECT_FALSE(removeUnfinishedFiles(workspace(), configuration())) << name;
        EXPECT_TRUE(folder_.has(name));
        fs::remove(folder_.path() / name);
        EXPECT_FALSE(hasTemporaryName());
    }
}

}  // namespace
}  // namespace rcp::test
