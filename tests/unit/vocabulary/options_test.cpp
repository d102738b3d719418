#include "launcher/vocabulary/options.h"

#include <gtest/gtest.h>

namespace rcp {
namespace {

TEST(Options, AreCopiedUnlessTheirRowSaysOtherwise) {
    EXPECT_EQ(copyRuleFor(L"-mine"), CopyRule::kCopy);
    EXPECT_EQ(copyRuleFor(L"-console"), CopyRule::kCopy);
    EXPECT_EQ(copyRuleFor(L"-product"), CopyRule::kCopyWithValue);
    EXPECT_EQ(copyRuleFor(L"-restart"), CopyRule::kDrop);
    EXPECT_EQ(copyRuleFor(L"-data"), CopyRule::kDropWithValue);
}

TEST(Options, MissOnlyTheValuesThatTheLauncherReads) {
    EXPECT_TRUE(takesValue(L"-data"));
    EXPECT_TRUE(takesValue(L"-nl"));
    EXPECT_FALSE(takesValue(L"-provManifest"));
    EXPECT_FALSE(takesValue(L"-restart"));
    EXPECT_FALSE(takesValue(L"data"));
}

TEST(Names, AreComparedAndJoinedAsTexts) {
    EXPECT_EQ(options::kData, L"-data");
    EXPECT_EQ(options::kRcpData + L"=/ws", L"-Drcp.data=/ws");
}

}  // namespace
}  // namespace rcp
