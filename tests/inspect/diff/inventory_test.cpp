#include "inspect/diff/inventory.h"

#include "tests/inspect/rehearsal_fixture.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

TEST(Inventory, OnlyTheInstallationsOwnFolderIsTakenOutOfATextAndNoneThatItsNameBegins) {
    EXPECT_EQ(withoutHome("a /opt/v/x:/opt/v", "/opt/v"), "a ${rcp.home}/x:${rcp.home}");
    EXPECT_EQ(withoutHome("/opt/v-2/x /opt/vv /opt/v.old", "/opt/v"),
              "/opt/v-2/x /opt/vv /opt/v.old");
    EXPECT_EQ(withoutHome("/opt/vv:/opt/v/x", "/opt/v"), "/opt/vv:${rcp.home}/x");
    EXPECT_EQ(withoutHome("/opt/v", ""), "/opt/v");
}

using Kind = FileDifference::Kind;

// What nobody can look at is neither missing nor the same.
TEST(Inventory, TellsWhatCannotBeRead) {
    const rcp::test::TestFolder folder;
    for (const char* side : {"old/", "new/"}) {
        for (const char* file : {"rcp/open.jar", "rcp/closed.jar", "closed/a", "closed/b/c"}) {
            folder.write(std::string(side) + file, "x");
        }
    }
    folder.write("new/rcp/more.jar", "x");
    const auto nothing = std::filesystem::perms::none;
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(folder.path() / "old/closed", nothing);
    for (const char* side : {"old", "new"}) {
        std::filesystem::permissions(folder.path() / side / "rcp/closed.jar", nothing);
    }
    const Tree first{.path = folder.narrow("old"), .without = {}, .settings = {}};
    const Tree second{.path = folder.narrow("new"), .without = {}, .settings = {}};
    const std::vector<FileDifference> expected{{Kind::kUnreadable, "closed"},
                                               {Kind::kUnreadable, "rcp/closed.jar"},
                                               {Kind::kAdded, "rcp/more.jar"}};
    {
        const test::AsAnotherUser other;
        EXPECT_EQ(differingFiles(first, second), expected);
        EXPECT_EQ(differingFiles({folder.narrow("old/closed"), {}, {}},
                                 {folder.narrow("old/closed"), {}, {}}),
                  (std::vector<FileDifference>{{Kind::kUnreadable, "."}}));
    }
    std::filesystem::permissions(folder.path() / "old/closed", std::filesystem::perms(0700));
}

}  // namespace
}  // namespace rcp::inspect
