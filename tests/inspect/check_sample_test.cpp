// The sample installation is what its makers should ship.
#include "platform/process.h"
#include "tests/inspect/paths.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"
#include "tests/unit/paths.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace rcp::inspect {
namespace {

class SampleCheck : public ::testing::TestWithParam<const char*> {
  protected:
    rcp::test::TestFolder folder_;
};

TEST_P(SampleCheck, FindsNothing) {
    // A launcher recognises its platform by the name in the folder.
    const std::string installation = folder_.narrow("Velmo");
    const std::string standIn =
        std::filesystem::path(rcp::test::seen(STANDIN_PLATFORM)).parent_path();
    const auto made = runProgram({rcp::test::seen(INSPECT_SOURCES "/scripts/make-sample"),
                                  installation, rcp::test::seen(INSPECT_LAUNCHER), "--mode",
                                  GetParam(), "--stand-in", standIn});
    ASSERT_TRUE(made && made->succeeded);
    const auto checked = runProgram({"env", "HOME=" + folder_.narrow("home"), "USER=ann",
                                     rcp::test::seen(INSPECT_PROGRAM), "check", "--install",
                                     installation, "--strict"});
    ASSERT_TRUE(checked);
    EXPECT_TRUE(checked->succeeded) << checked->output;
    EXPECT_EQ(checked->output, installation + ": nothing found\n");
}

INSTANTIATE_TEST_SUITE_P(Of, SampleCheck, ::testing::Values("exec", "service", "in-process"),
                         [](const auto& info) {
                             return std::string(info.param) == "in-process" ? std::string("library")
                                                                            : info.param;
                         });

}  // namespace
}  // namespace rcp::inspect
