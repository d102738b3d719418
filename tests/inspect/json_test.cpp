// The form of what every command tells in JSON.
#include "inspect/json/json.h"

#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"
#include "tests/support/sandbox.h"

#include <gtest/gtest.h>

namespace rcp::inspect::test {
namespace {

class JsonOf : public StatusTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(JsonOf, IsIndentedByTwoAndEndsItsLine) {
    Program program(
        {seen(INSPECT_PROGRAM), GetParam(), "--install", installation(), "--format", "json"},
        environment());
    const std::string output = program.rest();
    program.wait();
    EXPECT_EQ(output, nlohmann::ordered_json::parse(output).dump(2) + "\n");
}

INSTANTIATE_TEST_SUITE_P(Every, JsonOf,
                         testing::Values("check", "config", "doctor", "explain", "status"),
                         [](const auto& info) { return std::string(info.param); });

TEST_F(StatusTest, JsonOfDiffIsIndentedByTwo) {
    Program program({seen(INSPECT_PROGRAM), "diff", "--install", installation(), "--with",
                     installation(), "--format", "json"},
                    environment());
    const std::string output = program.rest();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(output, nlohmann::ordered_json::parse(output).dump(2) + "\n");
}

}  // namespace
}  // namespace rcp::inspect::test
