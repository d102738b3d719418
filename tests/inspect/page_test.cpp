#include "inspect/page/page.h"

#include "inspect/json/json.h"
#include "tests/inspect/paths.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"

#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <regex>

namespace rcp::inspect {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

json readData(const std::string& name) {
    std::ifstream input(rcp::test::seen(INSPECT_SOURCES "/tests/inspect/data/" + name));
    return json::parse(input);
}

json explanationOf(const std::string& text) {
    return {{"command", "explain"}, {"elements", {{{"text", text}}}}};
}

std::vector<std::string> allMatches(const std::string& text, const std::string& expression) {
    const std::regex pattern(expression);
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end;
         ++match) {
        found.push_back((*match)[1].str());
    }
    return found;
}

class Page : public rcp::test::LauncherTest {
  protected:
    std::string written(const json& data) {
        EXPECT_TRUE(writePage(data, folder_.narrow("page.html")));
        return folder_.read("page.html");
    }

    /// What stands in the data element, as a browser reads it: up to the first "</script".
    static std::string dataOf(const std::string& page) {
        const std::string opening = "<script type=\"application/json\" id=\"data\">";
        const std::size_t begin = page.find(opening) + opening.size();
        return page.substr(begin, page.find("</script", begin) - begin);
    }
};

TEST_F(Page, IsNotWrittenWhereItsNameHasNoCharacters) {
    errno = 0;
    EXPECT_FALSE(writePage(explanationOf("x"), folder_.narrow("page\xff.html")));
    EXPECT_EQ(errno, EILSEQ);
}

TEST_F(Page, HoldsTheExplanation) {
    const json explanation = readData("explanation.json");
    EXPECT_EQ(json::parse(dataOf(written(explanation))), explanation);
}

TEST_F(Page, HoldsTheReportOfACheck) {
    const json report = readData("report.json");
    ASSERT_TRUE(writePage(report, folder_.narrow("page.html")));
    EXPECT_EQ(json::parse(dataOf(folder_.read("page.html"))), report);
}

TEST_F(Page, NoTextEndsTheDataOrOpensAComment) {
    for (const std::string text : {"</script>", "</SCRIPT >", "<!--<script>", "]]>", "@DATA@",
                                   "\xE2\x80\xA8\xE2\x80\xA9\xE2\x80\xAE", "\"\\\n"}) {
        const std::string data = dataOf(written(explanationOf(text)));
        EXPECT_EQ(json::parse(data), explanationOf(text));
        EXPECT_THAT(data, Not(HasSubstr("<")));
        EXPECT_TRUE(std::all_of(data.begin(), data.end(), [](char character) {
            return character > 0x1f && character < 0x7f;
        })) << data;
    }
}

TEST_F(Page, BytesThatAreNotUtf8AreReplaced) {
    EXPECT_EQ(json::parse(dataOf(written(explanationOf("a\xFF\xC3z")))),
              explanationOf("a\xEF\xBF\xBD\xEF\xBF\xBDz"));
}

TEST_F(Page, OnlyItsDataDependOnWhatItShows) {
    std::string one = written(explanationOf("one"));
    std::string other = written(readData("report.json"));
    const std::string data = dataOf(one);
    EXPECT_EQ(one.replace(one.find(data), data.size(), ""),
              other.replace(other.find(dataOf(other)), dataOf(other).size(), ""));
}

// It goes by mail, and most of it is what it shows.
TEST_F(Page, IsSmallWithoutItsData) {
    constexpr std::size_t kMost = std::size_t{300} * 1024;
    EXPECT_LT(written(explanationOf("x")).size(), kMost);
}

TEST_F(Page, NeedsNothingBesideIt) {
    const std::string page = written(explanationOf("x"));
    EXPECT_THAT(allMatches(page, R"re(\b(src|srcset|action|poster|background)=)re"), IsEmpty());
    EXPECT_THAT(allMatches(page, R"re((<(?:link|img|iframe|object|embed|base|form)\b))re"),
                IsEmpty());
    EXPECT_THAT(
        allMatches(page, R"re((@import|url\(|\bimport\(|fetch\(|XMLHttpRequest|WebSocket))re"),
        IsEmpty());
    EXPECT_THAT(allMatches(page, R"re(href="([^#"][^"]*)")re"), IsEmpty());
    // The only address is the name of the vector graphics' vocabulary, which nothing is fetched from.
    EXPECT_THAT(allMatches(page, R"re(([a-z]+://[^'"\s]*))re"),
                ElementsAre("http://www.w3.org/2000/svg"));
}

TEST_F(Page, ForbidsANetworkAndForeignScripts) {
    const std::string page = written(explanationOf("x"));
    const auto policies =
        allMatches(page, R"re(http-equiv="Content-Security-Policy" content="([^"]*)")re");
    ASSERT_EQ(policies.size(), 1U);
    EXPECT_THAT(policies.front(), HasSubstr("default-src 'none'"));
    EXPECT_THAT(policies.front(), Not(HasSubstr("unsafe")));
    EXPECT_EQ(allMatches(policies.front(), "'(sha256-[A-Za-z0-9+/]{43}=)'").size(), 2U);
}

TEST_F(Page, NoMarkupIsEverMadeOfTexts) {
    EXPECT_THAT(
        allMatches(written(explanationOf("x")),
                   R"re((innerHTML|outerHTML|insertAdjacentHTML|document\.write|eval\())re"),
        IsEmpty());
}

TEST_F(Page, ReplacesAFormerOneAndLeavesNothingElse) {
    folder_.write("page.html", "former");
    EXPECT_THAT(written(explanationOf("x")), HasSubstr("<!DOCTYPE html>"));
    const std::filesystem::directory_iterator entries(folder_.path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(Page, BehindALinkTheTargetIsReplaced) {
    folder_.write("pages/real.html", "former");
    ASSERT_EQ(symlink("pages/real.html", folder_.narrow("page.html").c_str()), 0);
    written(explanationOf("x"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder_.narrow("page.html")));
    EXPECT_THAT(folder_.read("pages/real.html"), HasSubstr("<!DOCTYPE html>"));
}

struct Unwritable {
    std::string file;
    int error;
};

TEST_F(Page, WhatCannotBeWrittenIsSaid) {
    folder_.write("file", "untouched");
    ASSERT_EQ(symlink("loop", folder_.narrow("loop").c_str()), 0);
    for (const auto& [file, error] :
         {Unwritable{"", ENOENT}, Unwritable{folder_.narrow("missing/page.html"), ENOENT},
          Unwritable{folder_.narrow("file/page.html"), ENOTDIR},
          Unwritable{folder_.narrow(), EISDIR}, Unwritable{"/dev/null", EINVAL},
          Unwritable{folder_.narrow("loop"), ELOOP},
          Unwritable{folder_.narrow("\xFF.html"), EILSEQ}}) {
        errno = 0;
        EXPECT_FALSE(writePage(explanationOf("x"), file)) << file;
        EXPECT_EQ(errno, error) << file;
    }
    EXPECT_EQ(folder_.read("file"), "untouched");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

}  // namespace
}  // namespace rcp::inspect
