// The text of an explanation by itself.
#include "inspect/explain/explain_text.h"

#include "inspect/explain/elements_text.h"
#include "inspect/json/json.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

nlohmann::json smallExplanation() {
    return {{"outcome", {{"kind", "execv"}, {"role", "main"}, {"program", "/p"}}},
            {"facts", {{"firstLaunch", false}, {"waits", {"until it is over"}}}},
            {"elements",
             {{{"text", "/p"},
               {"rule", "what is started"},
               {"source", {{"kind", "computed"}}},
               {"placeholders", nlohmann::json::array()},
               {"instead", nlohmann::json::array()}}}},
            {"dropped", nlohmann::json::array()},
            {"environment", nlohmann::json::array()},
            {"changes", nlohmann::json::array()},
            {"files", nlohmann::json::array()}};
}

TEST(ExplanationText, IsColouredOnlyWhenAsked) {
    EXPECT_EQ(explanationText(smallExplanation(), {.isWhole = true}).find('\033'),
              std::string::npos);
    EXPECT_NE(explanationText(smallExplanation(), {.isColored = true}).find('\033'),
              std::string::npos);
}

TEST(ExplanationText, LeavesOutHeadingsOfNothing) {
    EXPECT_EQ(explanationText(smallExplanation(), {.isWhole = true}),
              "What a launch would do\n"
              "  end            it becomes /p\n"
              "  role           main\n"
              "  first launch   no\n"
              "  waits          until it is over\n"
              "\n"
              "The command line, element by element\n"
              "   0  /p\n"
              "        what is started (the launcher)\n");
}

TEST(ExplanationText, FoldsMoreThanSixChanges) {
    nlohmann::json explanation = smallExplanation();
    const nlohmann::json change = {{"change", "made"}, {"kind", "file"}, {"path", "/f"}};
    const auto isFolded = [&](std::size_t number) {
        explanation["changes"] = std::vector<nlohmann::json>(number, change);
        return explanationText(explanation, {}).find("/f and ") != std::string::npos;
    };
    EXPECT_FALSE(isFolded(6));
    EXPECT_TRUE(isFolded(7));
}

nlohmann::json element(const std::string& text, const nlohmann::json& source) {
    return {{"text", text},
            {"rule", "some"},
            {"source", source},
            {"placeholders", {{{"name", "${env.NOT_SET_HERE,x}"}, {"value", "x"}, {"after", "x"}}}},
            {"instead", nlohmann::json::array()}};
}

TEST(ExplanationText, TellsEachSourceAndEachMissingVariableOnce) {
    const nlohmann::json computed = {{"kind", "computed"}};
    const nlohmann::json place = {{"kind", "file"}, {"file", "/a/b"}, {"line", 4}, {"key", "vm"}};
    const nlohmann::json other = {{"kind", "file"}, {"file", "/a/b"}, {"line", 5}, {"key", "cp"}};
    nlohmann::json explanation = smallExplanation();
    explanation["elements"] = {element("/p", place),
                               element("-data", computed),
                               element("/ws", other),
                               element("-startup", computed),
                               element("/p/launcher.jar", place),
                               element("-vmargs", computed)};
    const std::string text = explanationText(explanation, {});
    const std::size_t line = text.find("The command line\n");
    ASSERT_NE(line, std::string::npos) << text;
    EXPECT_EQ(text.substr(line, text.find("\n\n", line) - line),
              "The command line\n"
              "   0  /p    (b:4 vm)\n"
              "        ${env.NOT_SET_HERE,x} = x: NOT_SET_HERE is not set, its default is used\n"
              "   1  -data /ws    (b:5 cp)\n"
              "      and 3 that the launcher always writes, or makes of the same entries");
}

TEST(ExplanationText, NamesSourcesInShort) {
    EXPECT_EQ(sourceText({{"kind", "file"}, {"file", "/a/b"}, {"line", 4}, {"key", "vm"}}),
              "b:4 vm");
    EXPECT_EQ(sourceText({{"kind", "file"}, {"file", "/a/b"}, {"line", 0}}), "b");
    EXPECT_EQ(sourceText({{"kind", "command line"}, {"position", 2}}), "argument 2");
    EXPECT_EQ(sourceText({{"kind", "environment"}, {"name", "HOME"}}), "variable HOME");
    EXPECT_EQ(sourceText({{"kind", "computed"}}), "the launcher");
}

}  // namespace
}  // namespace rcp::inspect
