#include "inspect/report/last_logs.h"

#include "tests/unit/fixture.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

namespace rcp::inspect {
namespace {

std::string textOf(const rcp::test::TestFolder& folder) {
    for (const Log& log : lastLogs({{"workspace", folder.narrow()}}, {})) {
        if (log.path == folder.narrow(".metadata/.log")) {
            return log.text;
        }
    }
    return "no log";
}

#ifdef __linux__
// The most that this process has had, in kilobytes.
long peak() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(LastLogs, OfAnyLengthAreReadAtTheirEndsAlone) {
    const rcp::test::TestFolder folder;
    folder.write(".metadata/.log", "!SESSION long ago\n");
    const std::string log = folder.narrow(".metadata/.log");
    std::filesystem::resize_file(log, std::uintmax_t{1} << 30U);
    std::ofstream(log, std::ios::app) << "\n!MESSAGE now\n";
    const long before = peak();
    EXPECT_TRUE(textOf(folder) == "!MESSAGE now\n");
    EXPECT_LT(peak(), before + (1 << 18));
}
#endif

TEST(LastLogs, BeginWithALine) {
    const rcp::test::TestFolder folder;
    folder.write(".metadata/.log", "!SESSION\n!MESSAGE now\n");
    EXPECT_EQ(textOf(folder), "!SESSION\n!MESSAGE now\n");
    const std::string line(std::size_t{1} << 20U, 'x');
    folder.write(".metadata/.log", "password=" + line + "\n!MESSAGE now\n");
    EXPECT_TRUE(textOf(folder) == "!MESSAGE now\n");
    folder.write(".metadata/.log", "password=" + line);
    EXPECT_TRUE(textOf(folder).empty());
}

// The name of what a later line of it holds is in its first.
TEST(LastLogs, BeginWithNoRestOfAnEntry) {
    const rcp::test::TestFolder folder;
    for (const std::string end : {"\n", "\r\n"}) {
        const std::string before = "x" + end;
        const std::string entry = "password=one\\" + end + "two\\" + end + "three" + end;
        for (std::size_t cut = 1; cut < before.size() + entry.size(); ++cut) {
            const std::size_t left = before.size() + entry.size() - cut;
            const std::string rest = std::string((std::size_t{1} << 20U) - left - 1, 'x') + "\n";
            folder.write(".metadata/.log", before + entry + rest);
            EXPECT_TRUE(textOf(folder) == (cut <= before.size() ? entry + rest : rest)) << cut;
        }
    }
}

}  // namespace
}  // namespace rcp::inspect
