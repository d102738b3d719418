#include "inspect/status/file_signs.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

TEST(FileSigns, AreOfAllThatALaunchTouchesButItsLogs) {
    const nlohmann::json launch = {
        {"launcher", "/i/launcher"},
        {"installation", "/i"},
        {"outcome", {{"program", "/i/program"}}},
        {"files", {{{"path", "/i/settings"}}}},
        {"changes", {{{"path", "/w/from"}, {"to", "/w/to"}}, {{"path", "/w/a.log"}}}},
        {"elements", {{{"text", "/i/jar"}}, {{"text", "-vm"}}}}};
    const std::vector<std::string> expected = {"/i/jar",
                                               "/i/launcher",
                                               "/i/program",
                                               "/i/rcp/rcplauncher.debug",
                                               "/i/rcp/rcplauncher.properties",
                                               "/i/settings",
                                               "/w/from",
                                               "/w/to"};
    EXPECT_EQ(pathsOf(launch), expected);
}

}  // namespace
}  // namespace rcp::inspect
