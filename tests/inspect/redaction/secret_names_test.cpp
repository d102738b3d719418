#include "inspect/redaction/secret_names.h"

#include "launcher/vocabulary/property_keys.h"
#include "launcher/vocabulary/variables.h"
#include "platform/text.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

TEST(SecretNames, AreMetByWholeWordsHoweverTheyAreWritten) {
    const SecretNames names;
    for (const char* name : {"password",
                             "db.password",
                             "db.passwd",
                             "dbPassword",
                             "dbpassword",
                             "DB_PASSWORD",
                             "-Ddb.password",
                             "-Dpassword",
                             "--password",
                             "PASSWORD1",
                             "passwords",
                             "api.key",
                             "apiKey",
                             "APIKey",
                             "apikey",
                             "ACCESS_KEY",
                             "-Dkey",
                             "key",
                             "keys",
                             "secret",
                             "client-secret",
                             "clientSecret",
                             "authToken",
                             "accesstoken",
                             "credentials",
                             "proxy.auth",
                             "Authorization",
                             "Cookie",
                             "session_cookie",
                             "env.GITHUB_TOKEN",
                             "javax.net.ssl.keyStorePassword",
                             "vmarg.Dpassphrase",
                             "pwd",
                             "ssh.private.key",
                             "db.secretkey",
                             "aws.accesskey",
                             "dbpass",
                             "card.pin",
                             "oauth",
                             "sessionid",
                             "sig"}) {
        EXPECT_TRUE(names.isSecret(name)) << name;
    }
}

TEST(SecretNames, AreNoPartsOfOtherWords) {
    const SecretNames names;
    for (const char* name : {"keyboard",
                             "key.board",
                             "monkey",
                             "turkey.size",
                             "hotkeys",
                             "keyring",
                             "author",
                             "authority",
                             "bypass",
                             "passenger",
                             "compass",
                             "secretary",
                             "tokenizer",
                             "cookiecutter",
                             "spinner",
                             "design",
                             "PWD",
                             "OLDPWD",
                             "javax.net.ssl.keyStore",
                             "keystore",
                             "keystore.path",
                             "key.file",
                             "keyFile",
                             "password.policy",
                             "token.type",
                             "keyBindings",
                             "rcpinspect.redact",
                             ""}) {
        EXPECT_FALSE(names.isSecret(name)) << name;
    }
}

TEST(SecretNames, OfTheLauncherAreNone) {
    const SecretNames names;
    for (const PropertyKey& known : propertyKeys()) {
        EXPECT_FALSE(names.isSecret(toNarrow(std::wstring(known.key)))) << known.usage;
    }
}

TEST(SecretNames, AreThoseThatASecretIsMadeOf) {
    SecretNames names;
    names.addSourceOf("db.password", "${env.DB_START}");
    names.addSourceOf("vmarg.x", "-Dx.token=${prop.x.start,none}");
    names.addSourceOf("a.password", "pre-${env.FIRST,a}${prop.second}");
    names.addSourceOf("vmarg.y", "-Dy.token=${env.THIRD}:${env.HOME}");
    for (const char* name :
         {"DB_START", "env.DB_START", "x.start", "prop.x.start", "FIRST", "prop.second", "THIRD"}) {
        EXPECT_TRUE(names.isSecret(name)) << name;
    }
    names.addSourceOf("db.password", "${env.HOME}");
    names.addSourceOf("db.password", "${prop.rcp.data}");
    names.addSourceOf("db.password", "${env.FOLDER}/x");
    names.addSourceOf("db.size", "${env.SIZE}");
    for (const char* name : {"HOME", "rcp.data", "FOLDER", "SIZE", "START"}) {
        EXPECT_FALSE(names.isSecret(name)) << name;
    }
}

TEST(SecretNames, OfAnInstallationAreMetAsWell) {
    SecretNames names;
    EXPECT_FALSE(names.isSecret("account.iban"));
    names.add("badge.number, iban,");
    EXPECT_TRUE(names.isSecret("account.iban"));
    EXPECT_TRUE(names.isSecret("BADGE_NUMBER"));
    EXPECT_TRUE(names.isSecret("staff.badgeNumber.last"));
    EXPECT_FALSE(names.isSecret("number.badge"));
    EXPECT_FALSE(names.isSecret("badge"));
}

}  // namespace
}  // namespace rcp::inspect
