#include "inspect/suggestions.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

const CommandWords kNone{.commands = {"explain", "check"}};
const CommandWords kCheck{.commands = {"explain", "check"},
                          .options = {"--install", "--strict", "--format", "-h", "-o"},
                          .valued = {"--install", "--format", "-o"},
                          .hasCommand = true};

TEST(Suggestions, NameTheWordThatIsNear) {
    EXPECT_EQ(suggestion("explan", {"explain", "check"}), "; did you mean explain?");
    EXPECT_EQ(suggestion("EXPLAIN", {"explain", "check"}), "; did you mean explain?");
    EXPECT_EQ(suggestion("nonsense", {"explain", "check"}), "");
    EXPECT_EQ(suggestion("--instal", {"--strict", "--install"}), "; did you mean --install?");
}

TEST(Suggestions, AWrongCommandIsSaid) {
    EXPECT_EQ(wrongWord({"chek", "--strict"}, kNone), "'chek' is no command; did you mean check?");
    EXPECT_EQ(wrongWord({}, kNone), "");
}

TEST(Suggestions, AWrongOptionIsSaid) {
    EXPECT_EQ(wrongWord({"check", "--strikt"}, kCheck),
              "'--strikt' is no option of check; did you mean --strict?");
    EXPECT_EQ(wrongWord({"check", "--strict", "--install=x", "-h"}, kCheck), "");
}

TEST(Suggestions, ArgumentsOfTheLauncherAreRecognised) {
    EXPECT_EQ(wrongWord({"check", "--strict", "-data", "/x"}, kCheck),
              "'-data' looks like an argument of the launcher; those stand behind \"--\"");
    EXPECT_EQ(wrongWord({"check", "--install", "a", "b"}, kCheck),
              "'b' is one argument too many; the launcher's stand behind \"--\"");
    EXPECT_EQ(wrongWord({"check", "--install", "a", "--format", "html", "b"}, kCheck), "");
    EXPECT_EQ(wrongWord({"check", "-o", "x"}, kCheck), "") << "an option of the command's own";
}

}  // namespace
}  // namespace rcp::inspect
