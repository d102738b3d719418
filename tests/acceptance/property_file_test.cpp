// How the launcher reads its property files, seen through the system properties ("-D" keys) and
// "-X" options that they put on the command line.
#include "checks.h"
#include "tests/acceptance/paths.h"

namespace acceptance {

namespace {

// The "-D" elements that come from the property file.
Texts systemProperties(const Report& platform) {
    Texts found;
    for (const std::string& argument : platform.behind("-Drcp.install.config=user")) {
        if (argument.starts_with("-Drcp.osgi.install.area=")) {
            break;
        }
        found.push_back(argument);
    }
    return found;
}

Texts readLines(const Texts& lines) {
    Installation velmo;
    for (const std::string& line : lines) {
        velmo.addLine(line);
    }
    return systemProperties(velmo.start());
}

TEST(PropertyFile, EqualsColonBlankAndTabSeparate) {
    expectList({"-Da=value", "-Db=value", "-Dc=value", "-Dd=value", "-De=value"},
               readLines({"-Da = value", "-Db:value", "-Dc value", "-Dd\tvalue", "-De=value"}));
}

TEST(PropertyFile, BackslashDoesNotKeepASeparatorFromSeparating) {
    expectList({"-Da=b=c"}, readLines({"-Da\\:b=c"}));
}

TEST(PropertyFile, BackslashesInValuesAreUndone) {
    expectList({"-Da=x\\y", "-Db=xty", "-Dc=é", "-Dd=x:y", "-De=a b", "-Df=xny", "-Dg=x\x01y"},
               readLines({"-Da=x\\\\y", "-Db=x\\ty", "-Dc=\\u00e9", "-Dd=x\\:y", "-De=a\\ b",
                          "-Df=x\\ny", "-Dg=x\\u0001y"}));
}

TEST(PropertyFile, BlanksAroundAValueAreRemovedAndTabsAreKept) {
    expectList({"-Da=v", "-Db=v\t"}, readLines({"-Da=  v  ", "  \t -Db=v\t"}));
}

TEST(PropertyFile, MissingValueIsAnEmptyValue) {
    expectList({"-Da=", "-Db=", "-Dc="}, readLines({"-Da=", "-Db", "-Dc="}));
}

TEST(PropertyFile, EntryContinuesAcrossCommentsAndLeadingBlanks) {
    expectList({"-Dpath=/a/b/c", "-Dnext=1"},
               readLines({"-Dpath=/a/b\\", "# a remark\\", "   /c", "-Dnext=1"}));
}

TEST(PropertyFile, SeparatorAtTheStartOfAContinuedLineIsDropped) {
    expectList({"-Da=12"}, readLines({"-Da=1\\", "=2"}));
}

TEST(PropertyFile, CarriageReturnsAreDroppedAndEndNoContinuation) {
    expectList({"-Da=v", "-Db=w", "-Dc=x"}, readLines({"-Da=v\r", "-Db=w\\\r", "-Dc=x\r"}));
}

TEST(PropertyFile, CommentsAndBlankLinesAreSkipped) {
    expectList({"-Da=1", "-Db=2"}, readLines({"", "   ", "# -Dx=1", "-Da=1", "", "-Db=2", "#"}));
}

TEST(PropertyFile, ExclamationMarkStartsAnEntryAndNotAComment) {
    Installation velmo;
    velmo.addLine("! comment").addLine("vmarg.a=-Dfound=${prop.!}");
    EXPECT_TRUE(velmo.start().has("-Dfound=comment"));
}

TEST(PropertyFile, LineOfThreeThousandBytesBecomesTwoEntries) {
    const std::string first = "-Dlong=" + std::string(2024 - 7, 'a');
    const std::string rest = "-Drest=" + std::string(969, 'b');
    expectList({first, rest}, readLines({first + rest}));
}

TEST(PropertyFile, CutOfALongLineNeverSplitsACharacter) {
    const std::string first = "-Dlong=" + std::string(2023 - 7, 'a');
    Installation velmo;
    velmo.addLine(first + "é=found").addLine("vmarg.a=-Drest=${prop.é}");
    const Report platform = velmo.start();
    expectList({first}, systemProperties(platform));
    EXPECT_TRUE(platform.has("-Drest=found"));
}

TEST(PropertyFile, LastEntryThatEndsInABackslashIsLost) {
    expectList({"-Da=1"}, readLines({"-Da=1", "-Db=2\\"}));
}

TEST(PropertyFile, LastLineNeedsNoLineFeed) {
    Installation velmo;
    velmo.write("app/rcp/rcplauncher.properties",
                "rcp.install.id=abc123\nrcp.base.location=" + velmo.base +
                    "\nplugincustomization=" + velmo.base + "/plugin_customization.ini\n-Dlast=1");
    velmo.program = velmo.place(ACCEPTANCE_LAUNCHER, "app/rcplauncher");
    EXPECT_TRUE(velmo.start().has("-Dlast=1"));
}

TEST(PropertyFile, FirstOfSeveralEqualKeysWins) {
    Installation velmo;
    velmo.addLine("application=first").addLine("application=second");
    velmo.addLine("-Dtwice=1").addLine("-Dtwice=2");
    const Report platform = velmo.start();
    EXPECT_EQ(platform.after("-application"), "first");
    expectList({"-Dtwice=1", "-Dtwice=2"}, systemProperties(platform));
}

TEST(PropertyFile, KeysAreCaseSensitive) {
    Installation velmo;
    velmo.set("Application", "wrong").set("application", "right");
    EXPECT_EQ(velmo.start().after("-application"), "right");
}

TEST(PropertyFile, NothingBehindAnEmptyKeyIsFoundByPrefix) {
    Installation velmo;
    velmo.addLine("-Dbefore=1").addLine("= empty key").addLine("-Dafter=1");
    velmo.addLine("application=behind");
    const Report platform = velmo.start();
    expectList({"-Dbefore=1"}, systemProperties(platform));
    EXPECT_EQ(platform.after("-application"), "behind") << "single keys are still found";
}

TEST(PropertyFile, ManyEntriesOfOnePrefixKeepTheirOrder) {
    Texts lines;
    for (int i = 0; i < 90; ++i) {
        lines.push_back("-Dkey" + std::to_string(i * 37 % 90) + "=" + std::to_string(i));
    }
    expectList(lines, readLines(lines));
}

TEST(PropertyFile, OptionEntriesKeepTheirSeparator) {
    Installation velmo;
    velmo.addLine("-Xmx512m").addLine("-Xbootclasspath/a:lib").addLine("-Xshareclasses:name=x");
    const Report platform = velmo.start();
    EXPECT_TRUE(platform.has("-Xmx512m"));
    EXPECT_TRUE(platform.has("-Xbootclasspath/a:lib"));
    EXPECT_TRUE(platform.has("-Xshareclasses:name=x"));
}

TEST(PropertyFile, NonAsciiTextIsReadAsUtf8) {
    expectList({"-Dgröße=日本 😀"}, readLines({"-Dgröße=日本 😀"}));
}

TEST(PropertyFile, HundredThousandEntriesWork) {
    Installation velmo;
    std::string lines;
    for (int i = 0; i < 100000; ++i) {
        lines += "some.key." + std::to_string(i) + "=value " + std::to_string(i) + "\n";
    }
    velmo.addLine(lines + "-Dlast=${env.NOPE}").set("vmarg.a", "-Dfound=${prop.some.key.99999}");
    const Report platform = velmo.start();
    EXPECT_TRUE(platform.has("-Dlast=${env.NOPE}"));
    EXPECT_TRUE(platform.has("-Dfound=value 99999"));
}

TEST(PropertyFile, MissingFileIsFatal) {
    NEEDS_PRIVATE_TMP();
    Installation velmo;
    velmo.program = velmo.place(ACCEPTANCE_LAUNCHER, "other/rcp/rcplauncher");
    expectEarlyFatal(velmo.launch(), "ZYPRA0096E: Unable to load " +
                                         velmo.path("other/rcp/rcplauncher.properties") + " file!");
}

}  // namespace

}  // namespace acceptance
