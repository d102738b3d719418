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

TEST(Options, SomeStandOnce) {
    EXPECT_TRUE(isUnique(L"-vm"));
    EXPECT_TRUE(isUnique(L"-dir"));
    EXPECT_TRUE(isUnique(L"-pb4l"));
    EXPECT_FALSE(isUnique(L"-perfJar"));
    EXPECT_FALSE(isUnique(L"-configuration"));
}

TEST(Names, AreComparedAndJoinedAsTexts) {
    EXPECT_EQ(options::kData, L"-data");
    EXPECT_EQ(options::kRcpData + L"=/ws", L"-Drcp.data=/ws");
}

}  // namespace
}  // namespace rcp
