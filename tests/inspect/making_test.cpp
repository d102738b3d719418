#include "inspect/making.h"

#include "inspect/json/json.h"
#include "tests/unit/fixture.h"
#include "tests/unit/launch_pieces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

using rcp::test::ScopedVariable;
using testing::MatchesRegex;

class Making : public rcp::test::LauncherTest {
  protected:
    const ScopedVariable all_{"LC_ALL"};
    const ScopedVariable characters_{"LC_CTYPE"};
    const ScopedVariable language_{"LANG"};
};

TEST_F(Making, ATimeIsToldInUtcToTheMinute) {
    const ScopedVariable zone("TZ", "Asia/Tokyo");
    EXPECT_EQ(dateAndTime(951782399), "2000-02-28 23:59 UTC");
}

TEST_F(Making, AnAgeIsToldInTheLargestUnitThatFits) {
    EXPECT_EQ(agoText(0), "0 seconds ago");
    EXPECT_EQ(agoText(59), "59 seconds ago");
    EXPECT_EQ(agoText(60), "1 minute ago");
    EXPECT_EQ(agoText(3599), "59 minutes ago");
    EXPECT_EQ(agoText(3600), "1 hour ago");
    EXPECT_EQ(agoText(24 * 3600), "1 day ago");
    EXPECT_EQ(agoText(400 * 24 * 3600), "400 days ago");
}

TEST_F(Making, TellsWhenByWhomAndWithWhat) {
    const nlohmann::json made = describeMaking();
    EXPECT_THAT(made["time"], MatchesRegex("2[0-9]{3}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2} UTC"));
    EXPECT_THAT(made["version"], MatchesRegex("[0-9]+\\.[0-9.]+"));
    EXPECT_EQ(made["user"], effectiveUser());
    EXPECT_NE(effectiveUser(), "");
}

TEST_F(Making, TheLocaleIsTheOneThatCountsForCharacters) {
    EXPECT_EQ(describeMaking()["locale"], "C");
    const ScopedVariable language("LANG", "de_DE.UTF-8");
    EXPECT_EQ(describeMaking()["locale"], "de_DE.UTF-8");
    const ScopedVariable characters("LC_CTYPE", "C.UTF-8");
    EXPECT_EQ(describeMaking()["locale"], "C.UTF-8");
    const ScopedVariable all("LC_ALL", "");
    EXPECT_EQ(describeMaking()["locale"], "C.UTF-8");
}

}  // namespace
}  // namespace rcp::inspect
