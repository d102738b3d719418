// Texts that would hurt a careless program, in every place from which a value can come. They arrive
// at the platform as they are; none is ever a format, a command or the end of something.
#include "checks.h"
#include "hostile.h"

#include <gtest/gtest.h>

namespace acceptance {

namespace {

// As they stand in a file, and what arrives.
struct Value {
    const char* written;
    const char* read;
};

constexpr Value kValues[] = {
    {"%", "%"},
    {"%s%s%n%d%5000d%%", "%s%s%n%d%5000d%%"},
    {"%ls %S %lc %*d %1$s", "%ls %S %lc %*d %1$s"},
    {"a 'b' \"c\" `d` $(e) ;f &g |h", "a 'b' \"c\" `d` $(e) ;f &g |h"},
    {"a\\u000ab\\u000dc", "a\nb\rc"},
    {"seen\\u0000unseen", "seen"},
    {"\\u00e9\\u65e5\xC3\xA9", "\xC3\xA9\xE6\x97\xA5\xC3\xA9"},
    {"x\\ty", "xty"},
    {"\\u", ""},
    {"$", "$"},
    {"${", "${"},
    {"-vmargs", "-vmargs"},
};

using HostileText = ShutIn;

TEST_F(HostileText, PropertiesReachThePlatformAsTheyAre) {
    for (const Value& value : kValues) {
        SCOPED_TRACE(value.written);
        Installation velmo;
        velmo.set("product", value.written);
        velmo.set("-Dx", value.written);
        const Report report = velmo.start();
        EXPECT_EQ(report.after("-product"), value.read);
        EXPECT_EQ(report.count("-Dx=" + std::string(value.read)), 1);
    }
}

TEST_F(HostileText, UsersPropertiesReachThePlatformAsTheyAre) {
    for (const Value& value : kValues) {
        SCOPED_TRACE(value.written);
        Installation velmo;
        velmo.addInstallLine("product=" + std::string(value.written));
        const Report report = velmo.start();
        EXPECT_EQ(report.after("-product"), value.read);
    }
}

TEST_F(HostileText, JvmArgumentsAndExtensionsReachThePlatformAsTheyAre) {
    for (const Value& value : kValues) {
        if (*value.read == '\0' || std::string(value.read) == "-vmargs") {
            continue;  // an argument of no text is no argument
        }
        SCOPED_TRACE(value.written);
        Installation velmo;
        const std::string text = value.written;
        velmo.set("vmarg.x", "-Dv=" + text);
        velmo.set("config.x.1", text);
        if (std::string(value.read).find('"') != std::string::npos) {
            EXPECT_EQ(velmo.launch({"-config", "x"}).status, 255);  // no argument may hold one
            continue;
        }
        const Report report = velmo.start({"-config", "x"});
        EXPECT_EQ(report.count("-Dv=" + std::string(value.read)), 1);
        EXPECT_EQ(report.count(value.read), 1);
    }
}

TEST_F(HostileText, EnvironmentReachesThePlatformAsItIs) {
    for (const char* value : {"%s%n%5000d", "a\nb", "'\"`$(x)", "\\u0041\\", "\xE6\x97\xA5", ""}) {
        SCOPED_TRACE(value);
        Installation velmo;
        velmo.environment["HOSTILE"] = value;
        velmo.set("vmarg.x", "-Dx=${env.HOSTILE}");
        velmo.set("env.set.COPY", value);
        const Report report = velmo.start();
        EXPECT_EQ(report.count("-Dx=" + std::string(value)), 1);
        EXPECT_EQ(report.variable("HOSTILE"), value);
    }
}

TEST_F(HostileText, PlaceholderInAnEnvironmentVariableThatDoesNotResolveIsRefused) {
    Installation velmo;
    velmo.environment["HOSTILE"] = "${prop.nowhere}";
    velmo.set("vmarg.x", "-Dx=${env.HOSTILE}");
    expectLateFatal(velmo.launch(),
                    "ZYPRA0088E: property substitution is invalid (-Dx=${env.HOSTILE})");
    velmo.environment["HOSTILE"] = "${env.HOSTILE}${env.HOSTILE}";
    expectLateFatal(velmo.launch(),
                    "ZYPRA0088E: property substitution is invalid (-Dx=${env.HOSTILE})");
}

TEST_F(HostileText, EnvironmentThatIsNoTextIsEmptyForTheLauncherAndStaysForThePlatform) {
    Installation velmo;
    velmo.environment["HOSTILE"] = "\xFF\xC3";
    velmo.set("vmarg.x", "-Dx=${env.HOSTILE}");
    const Report report = velmo.start();
    EXPECT_EQ(report.count("-Dx="), 1);
    EXPECT_EQ(report.variable("HOSTILE"), "\xFF\xC3");
}

TEST_F(HostileText, ArgumentsReachThePlatformAsTheyAre) {
    Installation velmo;
    const Texts arguments = {"%s%n%5000d", "a\nb",         "'`$(x);&|", "\\",
                             "\\u0041",    "\xE6\x97\xA5", "",          std::string(100000, 'x')};
    const Report report = velmo.start(arguments);
    for (const std::string& argument : arguments) {
        SCOPED_TRACE(argument.substr(0, 20));
        EXPECT_EQ(report.count(argument), 1);
    }
}

TEST_F(HostileText, ArgumentThatIsNoTextStaysAnArgument) {
    Installation velmo;
    const Report report = velmo.start({"first", "\xFF\xFE", "last"});
    const int first = report.indexOf("first");
    ASSERT_GE(first, 0);
    EXPECT_EQ(report.indexOf("last"), first + 2);
}

TEST_F(HostileText, LogHasOneLineForEachArgumentHoweverManyPercentSigns) {
    Installation velmo;
    const Launch launch = velmo.launch({"%s%s%s%n", "%5000d"});
    EXPECT_TRUE(hasLine(launch.log, "%s%s%s%n"));
    EXPECT_TRUE(hasLine(launch.log, "%5000d"));
}

}  // namespace

}  // namespace acceptance
