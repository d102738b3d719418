#include "launcher/user_area/unfinished_files.h"

#include "tests/unit/user_area/user_area_fixture.h"

namespace rcp::test {
namespace {

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
    removeUnfinishedFiles(workspace(), configuration());
    EXPECT_FALSE(hasTemporaryName());
}

TEST_F(UnfinishedFiles, ThatAreTheUsersStay) {
    const std::string names[] = {"ws/mine.tmp", "ws/registry.old", "ws/.config/mine.new",
                                 "ws/.config/args.properties", "ws/.config/config.ini"};
    for (const std::string& name : names) {
        folder_.write(name, "kept");
    }
    removeUnfinishedFiles(workspace(), configuration());
    for (const std::string& name : names) {
        EXPECT_EQ(folder_.read(name), "kept");
    }
}

TEST_F(UnfinishedFiles, MayBeNone) {
    removeUnfinishedFiles(folder_.wide("none"), folder_.wide("none/.config"));
    EXPECT_FALSE(folder_.has("none"));
}

}  // namespace
}  // namespace rcp::test
