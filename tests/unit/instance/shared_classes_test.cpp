// The decision alone: nothing here is looked at or emptied.
#include "launcher/instance/shared_classes.h"

#include <gtest/gtest.h>

namespace rcp {
namespace {

constexpr uid_t kAnn = 501;

SharedClassesFacts about(const std::string& path) {
    SharedClassesFacts facts;
    facts.named = facts.resolved = path;
    facts.owner = facts.user = kAnn;
    facts.home = "/home/ann";
    facts.currentDirectory = "/present/now";
    facts.temporary = "/tmp";
    facts.usersTemporary = "/var/folders/ann/T";
    facts.installation = "/opt/velmo";
    facts.workspace = "/data/ann/ws";
    facts.configuration = "/conf/ann/.config";
    return facts;
}

struct Ruling {
    const char* path;
    const wchar_t* reason;  // null: it may be emptied
};

TEST(SharedClassesDecision, IsMadeForEveryKindOfPlace) {
    const Ruling rulings[] = {
        {"/home/ann/.cache", nullptr},
        {"/home/ann/.cache/shared", nullptr},
        {"/home/ann/Library/Caches/velmo", nullptr},
        {"/home/annex", nullptr},
        {"/tmp/javasharedresources", nullptr},
        {"/var/folders/ann/T/shared", nullptr},
        {"/data/ann/ws/.shared", nullptr},
        {"/data/ann/ws2", nullptr},
        {"/conf/ann/.config/shared", nullptr},
        {"/opt/velmo/jre/shared", nullptr},
        {"/present/now/shared", nullptr},
        {"/", L"is the root directory"},
        {"", L"is no absolute path"},
        {".", L"is no absolute path"},
        {"..", L"is no absolute path"},
        {"shared", L"is no absolute path"},
        {"~/shared", L"is no absolute path"},
        {"${env.NOPE}/shared", L"is no absolute path"},
        {"/home/ann/.cache/link/sub/..", L"has an element \"..\""},
        {"/home/ann/.cache/../classes", L"has an element \"..\""},
        {"/home/ann/.cache/..shared", nullptr},
        {"/home/ann", L"is the home directory"},
        {"/home", L"holds the home directory"},
        {"/home/ann/Documents", L"is a folder of the home directory"},
        {"/home/ann/shared", L"is a folder of the home directory"},
        {"/present/now", L"is the current directory"},
        {"/present", L"holds the current directory"},
        {"/tmp", L"is the temporary directory"},
        {"/var/folders/ann/T", L"is the temporary directory"},
        {"/var", L"holds the temporary directory"},
        {"/opt/velmo", L"is the installation"},
        {"/opt", L"holds the installation"},
        {"/data/ann/ws", L"is the workspace"},
        {"/data", L"holds the workspace"},
        {"/conf/ann/.config", L"is the configuration area"},
        {"/conf", L"holds the configuration area"},
    };
    for (const Ruling& ruling : rulings) {
        const std::optional<std::wstring> expected =
            ruling.reason == nullptr ? std::nullopt : std::optional<std::wstring>(ruling.reason);
        EXPECT_EQ(reasonNotToEmpty(about(ruling.path)), expected) << ruling.path;
    }
}

TEST(SharedClassesDecision, RefusesALinkAndAnotherUsersDirectory) {
    SharedClassesFacts link = about("/home/ann/.cache");
    link.isLink = true;
    EXPECT_EQ(reasonNotToEmpty(link), L"is a symbolic link");
    SharedClassesFacts other = about("/home/ann/.cache");
    other.owner = 0;
    EXPECT_EQ(reasonNotToEmpty(other), L"belongs to another user");
}

TEST(SharedClassesDecision, IsMadeOfWhereThePathReallyLeads) {
    SharedClassesFacts facts = about("/caches/shared/..");
    facts.resolved = "/home/ann";
    EXPECT_EQ(reasonNotToEmpty(facts), L"is the home directory");
}

TEST(SharedClassesDecision, DoesWithoutPlacesThatAreNotKnown) {
    SharedClassesFacts facts;
    facts.named = facts.resolved = "/home/ann/shared";
    EXPECT_EQ(reasonNotToEmpty(facts), std::nullopt);
    facts.home = "/";
    facts.named = facts.resolved = "/shared";
    EXPECT_EQ(reasonNotToEmpty(facts), L"is a folder of the home directory");
}

}  // namespace
}  // namespace rcp
