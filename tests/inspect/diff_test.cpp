#include "inspect/diff/sequence_diff.h"
#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"

#include <gtest/gtest.h>

#include <regex>

namespace rcp::inspect::test {
namespace {

std::string told(const Words& first, const Words& second) {
    std::string text;
    for (const Edit& edit : differences(first, second)) {
        text += edit.isAdded ? "+" + second[edit.position] : "-" + first[edit.position];
    }
    return text;
}

TEST(SequenceDiff, EqualListsHaveNone) {
    EXPECT_EQ(told({}, {}), "");
    EXPECT_EQ(told({"a", "b"}, {"a", "b"}), "");
}

TEST(SequenceDiff, TellsTheFewestRemovalsAndAdditions) {
    EXPECT_EQ(told({"a", "b", "c"}, {"a", "c"}), "-b");
    EXPECT_EQ(told({"a", "c"}, {"a", "b", "c"}), "+b");
    EXPECT_EQ(told({"a", "x", "c"}, {"a", "y", "c"}), "-x+y");
    EXPECT_EQ(told({"1", "a", "2", "b", "3"}, {"a", "b"}), "-1-2-3");
    EXPECT_EQ(told({}, {"a"}), "+a");
}

TEST(SequenceDiff, AMovedElementIsRemovedAndAdded) {
    EXPECT_EQ(told({"a", "b", "c"}, {"b", "c", "a"}), "-a+a");
}

TEST(SequenceDiff, VeryDifferentLongListsAreReplacedBetweenTheirEnds) {
    Words first{"begin"};
    Words second{"begin"};
    for (int i = 0; i < 5000; ++i) {
        first.push_back("a" + std::to_string(i));
        second.push_back("b" + std::to_string(i));
    }
    first.emplace_back("end");
    second.emplace_back("end");
    const std::vector<Edit> edits = differences(first, second);
    ASSERT_EQ(edits.size(), 10'000U);
    EXPECT_EQ(edits.front(), (Edit{false, 1}));
    EXPECT_EQ(edits.back(), (Edit{true, 5000}));
}

class DiffTest : public StatusTest {
  protected:
    int run(const Words& options, std::string& output) const {
        Words all{seen(INSPECT_PROGRAM), "diff", "--install", installation()};
        all.insert(all.end(), options.begin(), options.end());
        Program program(all, environment());
        output = program.rest();
        return program.wait();
    }
    [[nodiscard]] std::string text(const Words& options) const {
        std::string output;
        EXPECT_EQ(run(options, output), 0);
        return output;
    }
    // The same installation in another place.
    [[nodiscard]] std::string copy() const {
        const std::string other = folder_.narrow("other");
        std::filesystem::copy(installation(), other, std::filesystem::copy_options::recursive);
        for (const char* name : {"rcplauncher.properties"}) {
            const std::string path = std::string("other/rcp/") + name;
            folder_.write(
                path, std::regex_replace(folder_.read(path), std::regex(installation()), other));
        }
        return other;
    }
};

TEST_F(DiffTest, ThePlaceOfAnInstallationIsNoDifference) {
    EXPECT_EQ(text({"--with", copy()}), "no difference\n");
}

TEST_F(DiffTest, DifferingElementsAndVariablesComeWithTheirSources) {
    const std::string other = copy();
    append("other/rcp/rcplauncher.properties", "vmarg.zzz=-Dmore=1\nenv.set.MORE=yes\n");
    const std::string differences = text({"--with", other});
    EXPECT_TRUE(std::regex_match(
        differences,
        std::regex("\\+ -Dmore=1    \\(rcplauncher.properties:[0-9]+ vmarg.zzz\\)\n"
                   "\\+ MORE=yes    \\(rcplauncher.properties:[0-9]+ env.set.MORE\\)\n")))
        << differences;
}

TEST_F(DiffTest, TheRecordedLastLaunchIsComparedElementByElement) {
    ASSERT_EQ(launch(), 0);
    EXPECT_EQ(text({"--since-last"}), "no difference\n");
    replaceIn(kProperties, "-Xmx128m", "-Xmx99m");
    const std::string differences = text({"--since-last"});
    EXPECT_TRUE(std::regex_match(
        differences, std::regex("- -Xmx128m\n\\+ -Xmx99m    \\(rcplauncher.properties:.*\\)\n")))
        << differences;
}

TEST_F(DiffTest, JsonNamesBothSidesAndEveryDifference) {
    const std::string other = copy();
    append("other/rcp/rcplauncher.properties", "vmarg.zzz=-Dmore=1\n");
    const Json result = Json::parse(text({"--with", other, "--format", "json"}));
    EXPECT_EQ(result["layout"], 1);
    EXPECT_EQ(result["first"]["installation"], installation());
    EXPECT_EQ(result["second"]["installation"], other);
    ASSERT_EQ(result["elements"].size(), 1U);
    EXPECT_EQ(result["elements"][0]["change"], "added");
    EXPECT_EQ(result["elements"][0]["text"], "-Dmore=1");
    EXPECT_EQ(result["elements"][0]["source"]["key"], "vmarg.zzz");
    EXPECT_EQ(result["environment"], Json::array());
}

TEST_F(DiffTest, ALaunchThatWouldFailIsNotTakenForOneWithoutElements) {
    const std::string other = copy();
    const std::string properties = "other/rcp/rcplauncher.properties";
    folder_.write(properties,
                  std::regex_replace(folder_.read(properties), std::regex("rcp.install.id"), "x"));
    EXPECT_EQ(text({"--with", other}).find("! the second would end with ZYPRA0016E"), 0U);
    const Json result = Json::parse(text({"--with", other, "--format", "json"}));
    EXPECT_TRUE(result["second"]["record"].get<std::string>().starts_with("ZYPRA0016E"));
    EXPECT_FALSE(result["first"].contains("record"));
}

TEST_F(DiffTest, WithoutAnythingToCompareWithItIsWrongUse) {
    std::string output;
    EXPECT_EQ(run({}, output), 64);
    EXPECT_EQ(run({"--since-last", "--with", installation()}, output), 64);
}

TEST_F(DiffTest, WithoutARecordedLaunchItFails) {
    std::string output;
    EXPECT_EQ(run({"--since-last"}, output), 70);
}

}  // namespace
}  // namespace rcp::inspect::test
