#include "inspect/redaction/identity.h"

#include "tests/inspect/redaction/redactor_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <vector>

namespace rcp::inspect {
namespace {

TEST(Identity, KnowsNoUserHomeOrHost) {
    EXPECT_EQ(redacted("/home/ann/work of ann on desk7, not annex, /home/annex"),
              "/home/<user>/work of <user> on <host>, not annex, /home/<user:" +
                  saltedDigest(kSalt, "annex") + ">");
    EXPECT_EQ(redacted("file:///home/ann"), "file:///home/<user>");
}

// As the launcher and the platform write them into property files, and SARIF into its addresses.
TEST(Identity, KnowsNamesInEscapedForms) {
    const std::string jorg = "j\u00f6rg";
    Redactor one(kSalt, {{"/opt/people/" + jorg + " x"}, {jorg}, {}});
    for (const char* home :
         {"/opt/people/j\u00f6rg x", "/opt/people/j\\u00f6rg x", "/opt/people/j\\u00F6rg x",
          "/opt/people/j%C3%B6rg%20x", "/opt/people/j%c3%b6rg%20x"}) {
        EXPECT_EQ(one.redact("file:" + std::string(home) + "/a"), "file:/home/<user>/a");
    }
    for (const char* user : {"j\u00f6rg", "j\\u00f6rg", "j\\u00F6rg", "j%C3%B6rg"}) {
        EXPECT_EQ(one.redact("/srv/" + std::string(user) + "/a"), "/srv/<user>/a");
    }
}

TEST(Identity, KnowsAHostInAnyLetterCase) {
    EXPECT_EQ(redacted("on DESK7.example.org, Desk7 and desk77"),
              "on <host>.example.org, <host> and desk77");
}

TEST(Identity, KnowsHomesInOtherPlaces) {
    const std::string joe = "<user:" + saltedDigest(kSalt, "joe") + ">";
    for (const char* homes : {"/export/home/", "/var/home/", "/usr/home/", "/Users/"}) {
        EXPECT_EQ(redacted(std::string(homes) + "joe/x"), homes + joe + "/x");
    }
}

TEST(Identity, KnowsHomesBelowTheirDomain) {
    const std::string joe = "<user:" + saltedDigest(kSalt, "joe") + ">";
    const std::string domain = "<user:" + saltedDigest(kSalt, "ACME-1") + ">";
    EXPECT_EQ(redacted("/home/ACME-1/joe/x"), "/home/" + domain + "/" + joe + "/x");
    EXPECT_EQ(redacted("/home/ACME-1"), "/home/" + domain);
    const std::string ann = "<user:" + saltedDigest(kSalt, "Ann") + ">";
    EXPECT_EQ(redacted("/home/Ann/Documents"), "/home/" + ann + "/Documents");
}

TEST(Identity, KnowsHomesBesideItsOwn) {
    Redactor one(kSalt, {{"/home/acme/ann"}, {"ann"}, {}});
    const std::string joe = "<user:" + saltedDigest(kSalt, "joe") + ">";
    EXPECT_EQ(one.redact("/home/acme/joe/x, /home/acme/ann/y"),
              "/home/<user:" + saltedDigest(kSalt, "acme") + ">/" + joe + "/x, /home/<user>/y");
    Redactor other(kSalt, {{"/opt/team/ann"}, {"ann"}, {}});
    EXPECT_EQ(other.redact("/opt/team/lib"), "/opt/team/lib");
}

TEST(Identity, HasTheHomeAsItIsAndAsItIsReached) {
    const std::string folder = ::testing::TempDir() + "rcp-home-XXXXXX";
    std::vector<char> name(folder.begin(), folder.end());
    name.push_back('\0');
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    const std::filesystem::path home = std::filesystem::canonical(name.data());
    const std::filesystem::path link = home / "link";
    std::filesystem::create_directory_symlink(home, link);
    setenv("HOME", link.c_str(), 1);
    EXPECT_THAT(identityOfThisProcess().homes,
                ::testing::IsSupersetOf({home.string(), link.string()}));
    std::filesystem::remove_all(home);
}

TEST(Identity, HasNoWordsOfTheSystem) {
    setenv("USER", "vm", 1);
    setenv("LOGNAME", "eclipse", 1);
    setenv("HOME", "/home/vm/", 1);
    const Identity identity = identityOfThisProcess();
    EXPECT_THAT(identity.users, ::testing::Not(::testing::Contains("vm")));
    EXPECT_THAT(identity.users, ::testing::Not(::testing::Contains("eclipse")));
    EXPECT_THAT(identity.homes, ::testing::Contains("/home/vm"));
}

}  // namespace
}  // namespace rcp::inspect
