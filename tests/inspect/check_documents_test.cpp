// The documents list what the tables of the program hold, and nothing else.
#include "inspect/check/finding.h"
#include "inspect/check/near_keys.h"
#include "launcher/vocabulary/property_keys.h"
#include "tests/inspect/paths.h"
#include "tests/support/sandbox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

namespace rcp::inspect {
namespace {

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

// The cells of every table row of a document between two headings.
std::vector<std::vector<std::string>> rows(const std::string& document, const std::string& from,
                                           const std::string& to) {
    std::ifstream stream(rcp::test::seen(INSPECT_SOURCES "/docs/" + document));
    std::vector<std::vector<std::string>> found;
    bool isInside = false;
    for (std::string line; std::getline(stream, line);) {
        isInside = (isInside || line == from) && line != to;
        if (!isInside || !line.starts_with("| ")) {
            continue;
        }
        std::vector<std::string> cells;
        std::istringstream text(line.substr(1));
        for (std::string cell; std::getline(text, cell, '|');) {
            cells.push_back(trimmed(cell));
        }
        found.push_back(cells);
    }
    return found;
}

TEST(CheckDocuments, ListEveryFindingAsItIs) {
    std::vector<std::vector<std::string>> documented;
    for (const auto& cells : rows("findings.md", "## Lines", "## The layout of `--format json`")) {
        if (cells.front() != "code") {
            documented.push_back(cells);
        }
    }
    std::vector<std::vector<std::string>> known;
    for (const FindingRule& rule : findingRules()) {
        known.push_back({rule.code, rule.name, levelName(rule.level), rule.meaning, rule.remedy});
    }
    EXPECT_EQ(documented, known);
}

TEST(CheckFindingTable, HasCodesInOrderAndNamesOfTheirOwn) {
    std::set<std::string> names;
    std::string former;
    for (const FindingRule& rule : findingRules()) {
        EXPECT_LT(former, rule.code);
        former = rule.code;
        EXPECT_TRUE(names.insert(rule.name).second) << rule.name;
    }
}

TEST(NearKeys, CountSlipsAndIgnoreCase) {
    EXPECT_EQ(editDistance(L"product", L"PRODUCT"), 0U);
    EXPECT_EQ(editDistance(L"product", L"prodct"), 1U);
    EXPECT_EQ(editDistance(L"product", L"prodcut"), 1U);
    EXPECT_EQ(editDistance(L"", L"abc"), 3U);
    EXPECT_EQ(editDistance(L"rcp.instlal.idd", L"rcp.install.id"), 2U);
    EXPECT_EQ(editDistance(L"ca", L"abc"), 3U);  // no slip inside of a swap
}

TEST(NearKeys, OfFarTextsOnlyThatTheyAreFarIsFound) {
    EXPECT_EQ(editDistance(L"kitten", L"sitting", 3), 3U);
    EXPECT_GT(editDistance(L"kitten", L"sitting", 2), 2U);
    EXPECT_GT(editDistance(L"a", L"abcdef", 2), 2U);
    EXPECT_EQ(editDistance(L"ab", L"ba", 1), 1U);
    EXPECT_GT(editDistance(L"abcd", L"wxyz", 0), 0U);
}

TEST(NearKeys, SuggestAKeyOfTheSameFile) {
    EXPECT_EQ(nearestKey(L"rcp.instal.id", kLauncherFile), L"rcp.install.id");
    EXPECT_EQ(nearestKey(L"vmargs.Xmx", kLauncherFile), L"vmarg.Xmx");
    EXPECT_EQ(nearestKey(L"env.sett.A", kLauncherFile), L"env.set.A");
    EXPECT_EQ(nearestKey(L"osgi.splashpath", kUserFile), L"osgi.splashPath");
    EXPECT_EQ(nearestKey(L"osgi.splashpath", kLauncherFile), L"");
    EXPECT_EQ(nearestKey(L"something.else", kLauncherFile), L"");
}

}  // namespace
}  // namespace rcp::inspect
