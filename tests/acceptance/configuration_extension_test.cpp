// "-config NAME" replaces itself by the properties config.NAME.1, config.NAME.2, ...
#include "checks.h"

namespace acceptance {

namespace {

class ConfigurationExtension : public testing::Test {
  protected:
    // config.x.1, config.x.2, ... with these values.
    void extend(const Texts& values) {
        int number = 0;
        for (const std::string& value : values) {
            velmo.set("config.x." + std::to_string(++number), value);
        }
    }

    // The copied options and the JVM's own arguments of a launch, with "|" between them.
    Texts result(const Texts& arguments) {
        const Report platform = velmo.start(arguments);
        Texts all = platform.between("--launcher.suppressErrors", "-data");
        all.emplace_back("|");
        for (const std::string& argument :
             platform.between("-vmargs", "-Drcp.home=" + velmo.home)) {
            all.push_back(argument);
        }
        return all;
    }

    Installation velmo;
};

TEST_F(ConfigurationExtension, ValuesFollowTheCommandLine) {
    extend({"-one", "two", "vmarg.a=-Da=1"});
    expectList({"-before", "-behind", "-one", "two", "vmarg.a=-Da=1", "|", "-Da=1"},
               result({"-before", "-config", "x", "-behind"}));
}

TEST_F(ConfigurationExtension, NumberingStopsAtTheFirstGap) {
    velmo.set("config.x.1", "-one").set("config.x.3", "-three");
    expectList({"-one", "|"}, result({"-config", "x"}));
}

TEST_F(ConfigurationExtension, EmptyValueIsSkippedAndTheCountGoesOn) {
    extend({"-one", "", "-three"});
    expectList({"-one", "-three", "|"}, result({"-config", "x"}));
}

TEST_F(ConfigurationExtension, UnknownNameOnlyRemovesItself) {
    expectList({"-a", "-b", "|"}, result({"-a", "-config", "unknown", "-b"}));
}

TEST_F(ConfigurationExtension, ValuesGoBeforeTheCommandLinesVmargs) {
    extend({"-one", "-two"});
    expectList({"-a", "-one", "-two", "|", "-Dtail"},
               result({"-config", "x", "-a", "-vmargs", "-Dtail"}));
}

TEST_F(ConfigurationExtension, VmargsAmongTheValuesSendsTheRestBehindTheTail) {
    extend({"-one", "-vmargs", "-Dtwo", "-Dthree"});
    expectList({"-a", "-one", "|", "-Dtail", "-Dtwo", "-Dthree"},
               result({"-a", "-config", "x", "-vmargs", "-Dtail"}));
}

TEST_F(ConfigurationExtension, VmargsAmongTheValuesStandsWhenTheCommandLineHasNone) {
    extend({"-one", "-vmargs", "-Dtwo", "-Dthree"});
    expectList({"-a", "-one", "|", "-Dtwo", "-Dthree"}, result({"-a", "-config", "x"}));
}

TEST_F(ConfigurationExtension, ConfigBehindVmargsInsertsJustBeforeThem) {
    extend({"-one", "-two"});
    expectList({"-a", "-one", "-two", "|", "-Dtail"},
               result({"-a", "-vmargs", "-Dtail", "-config", "x"}));
    expectList({"-one", "-two", "|"}, result({"-vmargs", "-config", "x"}));
}

TEST_F(ConfigurationExtension, OptionWithoutANameIsKept) {
    extend({"-one"});
    expectList({"-a", "-config", "|"}, result({"-restart", "-a", "-config"}));
}

TEST_F(ConfigurationExtension, RepeatedPairsLoseTheirSecondOccurrence) {
    extend({"-application", "c", "-nl", "de", "-dir", "rtl", "-personality", "p2"});
    expectList({"-application", "a", "-nl", "en", "-dir", "ltr", "-personality", "p1", "|"},
               result({"-application", "a", "-nl", "en", "-dir", "ltr", "-personality", "p1",
                       "-config", "x"}));
}

TEST_F(ConfigurationExtension, ThirdOccurrenceOfAPairStays) {
    extend({"-nl", "fr"});
    expectList({"-nl", "en", "-nl", "fr", "|"}, result({"-nl", "en", "-nl", "de", "-config", "x"}));
}

TEST_F(ConfigurationExtension, ProductIsPassedOverTwice) {
    extend({"-product", "c"});
    expectList({"-product", "a", "|"}, result({"-product", "a", "-product", "b", "-config", "x"}));
}

TEST_F(ConfigurationExtension, ThirdOccurrenceOfASingleStays) {
    extend({"-console", "-console", "-pb4l"});
    expectList({"-console", "-pb4l", "-console", "|"},
               result({"-console", "-pb4l", "-config", "x"}));
}

TEST_F(ConfigurationExtension, OptionThatOccursOnceIsNotTouched) {
    extend({"-clean"});
    expectList({"-clean", "-clean", "|"}, result({"-clean", "-config", "x"}));
}

TEST_F(ConfigurationExtension, WithoutTheOptionNothingIsRemoved) {
    expectList({"-nl", "en", "-nl", "de", "|"}, result({"-nl", "en", "-nl", "de"}));
}

TEST_F(ConfigurationExtension, WorkspaceOfAnExtensionBecomesTheDataProperty) {
    extend({"-data", velmo.path("ws")});
    velmo.workspace = velmo.path("ws");
    velmo.set("vmarg.x", "-Dx=${prop.rcp.data}");
    const Report platform = velmo.start({"-config", "x"});
    EXPECT_EQ(platform.after("-data"), velmo.path("ws"));
    EXPECT_TRUE(platform.has("-Dx=" + velmo.path("ws")));
    velmo.set("rcp.data", velmo.path("other"));
    EXPECT_TRUE(velmo.start({"-config", "x"}).has("-Dx=" + velmo.path("ws")));
    EXPECT_FALSE(fileExists(velmo.path("other")));
}

TEST_F(ConfigurationExtension, WorkspaceOfTheCommandLineStaysTheFirst) {
    extend({"-data", velmo.path("extension")});
    velmo.workspace = velmo.path("given");
    EXPECT_EQ(velmo.start({"-data", velmo.path("given"), "-config", "x"}).after("-data"),
              velmo.path("given"));
    EXPECT_FALSE(fileExists(velmo.path("extension")));
}

TEST_F(ConfigurationExtension, CommandLineWinsOverTheExtensionAndThatOverTheFiles) {
    extend({"vmarg.a=-Da=extension", "vmarg.b=-Db=extension"});
    velmo.set("vmarg.a", "-Da=file").set("vmarg.b", "-Db=file").set("vmarg.c", "-Dc=file");
    expectList({"vmarg.a=-Da=given", "vmarg.a=-Da=extension", "vmarg.b=-Db=extension", "|",
                "-Da=given", "-Db=extension", "-Dc=file"},
               result({"vmarg.a=-Da=given", "-config", "x"}));
}

TEST_F(ConfigurationExtension, ResetOptionOfAnExtensionResets) {
    velmo.start();
    extend({"-resetconfig"});
    velmo.start({"-config", "x"});
    EXPECT_TRUE(fileExists(velmo.configuration() + "bak"));
}

TEST_F(ConfigurationExtension, RestartArgumentsKeepTheOptionItself) {
    extend({"-one"});
    velmo.start({"-config", "x"});
    const std::string recorded = readFile(velmo.configuration() + "/args.properties");
    EXPECT_TRUE(hasLine(recorded, "arg1=-config"));
    EXPECT_TRUE(hasLine(recorded, "arg2=x"));
    EXPECT_FALSE(hasLineStart(recorded, "arg5")) << recorded;
}

TEST_F(ConfigurationExtension, TenThousandValuesWork) {
    Texts values;
    for (int i = 0; i < 10000; ++i) {
        values.push_back("-value" + std::to_string(i));
        velmo.addLine("config.x." + std::to_string(i + 1) + "=" + values.back());
    }
    values.emplace_back("|");
    expectList(values, result({"-config", "x"}));
}

}  // namespace

}  // namespace acceptance
