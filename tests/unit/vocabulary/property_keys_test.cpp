#include "launcher/vocabulary/property_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

namespace rcp {
namespace {

TEST(PropertyKeys, CountInTheFilesThatAreReadBeforeTheyAreAskedFor) {
    EXPECT_NE(findPropertyKey(L"jvm.location", kLauncherFile), nullptr);
    EXPECT_EQ(findPropertyKey(L"jvm.location", kJvmFile), nullptr);
    EXPECT_NE(findPropertyKey(L"java.home", kJvmFile), nullptr);
    EXPECT_NE(findPropertyKey(L"osgi.splashPath", kUserFile), nullptr);
    EXPECT_EQ(findPropertyKey(L"osgi.splashPath", kLauncherFile), nullptr);
}

TEST(PropertyKeys, MatchWhatMayStandBehindThem) {
    EXPECT_EQ(findPropertyKey(L"vmarg.Dshare")->key, L"vmarg.Dshare");
    EXPECT_EQ(findPropertyKey(L"vmarg.Dshared")->key, L"vmarg.");
    EXPECT_EQ(findPropertyKey(L"config.initial.1")->key, L"config.initial.");
    EXPECT_EQ(findPropertyKey(L"config.a.b.12")->key, L"config.");
    EXPECT_EQ(findPropertyKey(L"config.a.restartExe.win32"), nullptr);
    EXPECT_EQ(findPropertyKey(L"env.set"), nullptr);
    EXPECT_EQ(findPropertyKey(L"env.set.A")->key, L"env.set");
    EXPECT_EQ(findPropertyKey(L"cpx"), nullptr);
}

TEST(PropertyKeys, SayWhatTheyAreForAndWhatTheyMean) {
    for (const PropertyKey& key : propertyKeys()) {
        EXPECT_THAT(key.usage, testing::Not(testing::StrEq(""))) << key.meaning;
        EXPECT_THAT(key.meaning, testing::Not(testing::StrEq(""))) << key.usage;
    }
}

TEST(PropertyKeys, NameTheDefaultWhereThereIsOne) {
    for (const PropertyKey& key : propertyKeys()) {
        const bool isNamed = std::string_view(key.meaning).find("%s") != std::string_view::npos;
        EXPECT_EQ(isNamed, key.otherwise != nullptr) << key.meaning;
    }
}

TEST(PropertyKeys, KnowTheirFilesByName) {
    EXPECT_EQ(keyFileOf(L"/a/rcp/rcplauncher.properties"), kLauncherFile);
    EXPECT_EQ(keyFileOf(L"jvm.properties"), kJvmFile);
    EXPECT_EQ(keyFileOf(L"/a/rcpinstall.properties"), kUserFile);
    EXPECT_EQ(keyFileOf(L"/a/args.properties"), kArgsFile);
    EXPECT_EQ(keyFileOf(L"/a/other.properties"), kNoFile);
}

}  // namespace
}  // namespace rcp
