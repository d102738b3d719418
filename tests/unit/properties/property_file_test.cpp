// The reader of property files. "\\" below is one backslash of the file.
#include "launcher/properties/property_file.h"

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/records.h"

namespace rcp {
namespace {

using test::Pairs;
using test::pairsOf;

class PropertyFile : public test::LauncherTest {
  protected:
    PropertyList list(const std::string& content) const {
        folder_.write("file", content);
        PropertyList read;
        getProperties(folder_.wide("file"), read);
        return read;
    }
    [[nodiscard]] Pairs read(const std::string& content) const { return pairsOf(list(content)); }
};

// --- Separators ---------------------------------------------------------------------------------

TEST_F(PropertyFile, EverySeparatorGivesTheSameEntry) {
    for (const char* line : {"key = value", "key:value", "key value", "key\tvalue", "key=value",
                             "key \t:= value", "  key==value"}) {
        EXPECT_EQ(read(line), (Pairs{{L"key", L"value"}})) << line;
    }
}

TEST_F(PropertyFile, SeparatorsBehindTheFirstCharacterOfTheValueBelongToIt) {
    EXPECT_EQ(read("a=b=c:d e\tf\n"), (Pairs{{L"a", L"b=c:d e\tf"}}));
}

TEST_F(PropertyFile, LineWithoutSeparatorIsAKeyWithAnEmptyValue) {
    EXPECT_EQ(read("k\nk=\nk:  \n"), (Pairs{{L"k", L""}, {L"k", L""}, {L"k", L""}}));
}

TEST_F(PropertyFile, LineThatBeginsWithASeparatorHasAnEmptyKey) {
    EXPECT_EQ(read("=v\n:w\n"), (Pairs{{L"", L"v"}, {L"", L"w"}}));
}

TEST_F(PropertyFile, ValueIsTrimmed) {
    EXPECT_EQ(read("k=  v  \n"), (Pairs{{L"k", L"v"}}));
    EXPECT_EQ(read("k=v\t\n"), (Pairs{{L"k", L"v\t"}})) << "of blanks only";
}

TEST_F(PropertyFile, EveryEntryIsStoredInFileOrderRepeatedOnesToo) {
    const PropertyList found = list("a=1\nb=2\na=3\n");
    EXPECT_EQ(pairsOf(found), (Pairs{{L"a", L"1"}, {L"b", L"2"}, {L"a", L"3"}}));
    EXPECT_EQ(*findProperty(Key(L"a"), found), L"1");
}

TEST_F(PropertyFile, SecondFileIsAppended) {
    PropertyList found = list("a=1\n");
    folder_.write("second", "a=2\nb=3\n");
    getProperties(folder_.wide("second"), found);
    EXPECT_EQ(pairsOf(found), (Pairs{{L"a", L"1"}, {L"a", L"2"}, {L"b", L"3"}}));
}

TEST_F(PropertyFile, BlankLinesAreSkippedAndTheLastNeedsNoLineFeed) {
    EXPECT_EQ(read("\n \t\n\na=1\n\n\r\n  b=2"), (Pairs{{L"a", L"1"}, {L"b", L"2"}}));
    EXPECT_EQ(read(""), Pairs());
    EXPECT_EQ(read("\n\n"), Pairs());
}

TEST_F(PropertyFile, CarriageReturnIsDropped) {
    EXPECT_EQ(read("a=1\r\nb\r\nc=x\ry\r\n"), (Pairs{{L"a", L"1"}, {L"b", L""}, {L"c", L"xy"}}));
}

// --- Comments -----------------------------------------------------------------------------------

TEST_F(PropertyFile, NumberSignBeginsAComment) {
    EXPECT_EQ(read("#a=1\n  # b=2\nc=3 # no comment\n"), (Pairs{{L"c", L"3 # no comment"}}));
}

TEST_F(PropertyFile, ExclamationMarkIsAnEntry) {
    EXPECT_EQ(read("! comment\n"), (Pairs{{L"!", L"comment"}}));
}

// --- Backslashes --------------------------------------------------------------------------------

TEST_F(PropertyFile, BackslashDoesNotProtectASeparatorInFrontOfTheValue) {
    EXPECT_EQ(read("a\\:b=c\n"), (Pairs{{L"a", L"b=c"}}));
    EXPECT_EQ(read("a\\=b\n"), (Pairs{{L"a", L"b"}}));
    EXPECT_EQ(read("a\\ b\n"), (Pairs{{L"a", L"b"}}));
}

TEST_F(PropertyFile, BackslashInFrontOfASeparatorGoesInTheValueToo) {
    EXPECT_EQ(read("a=b\\:c\\#d\\ e\\=f\n"), (Pairs{{L"a", L"b:c#d e=f"}}));
}

TEST_F(PropertyFile, BackslashInFrontOfANumberSignMakesAnEntryOfIt) {
    EXPECT_EQ(read("\\#a=1\n"), (Pairs{{L"#a", L"1"}}));
}

TEST_F(PropertyFile, OtherBackslashesStayInTheKey) {
    EXPECT_EQ(read("a\\tb\\\\c=1\n"), (Pairs{{L"a\\tb\\\\c", L"1"}}));
}

TEST_F(PropertyFile, EscapesAreTakenOutOfTheValue) {
    EXPECT_EQ(read("k=x\\\\y\n"), (Pairs{{L"k", L"x\\y"}}));
    EXPECT_EQ(read("k=x\\ty\n"), (Pairs{{L"k", L"xty"}}));
    EXPECT_EQ(read("k=\\u00e9\n"), (Pairs{{L"k", L"\u00E9"}}));
    EXPECT_EQ(read("k=x\\\\\n"), (Pairs{{L"k", L"x\\"}})) << "a pair at the end";
    EXPECT_EQ(read("k=\\\\u0041\n"), (Pairs{{L"k", L"\\u0041"}}));
}

TEST_F(PropertyFile, KeysAndValuesAreUtf8) {
    EXPECT_EQ(read("B\u00FCro=\u65E5\U0001F600\n"), (Pairs{{L"B\u00FCro", L"\u65E5\U0001F600"}}));
}

// --- Continuations ------------------------------------------------------------------------------

TEST_F(PropertyFile, ValueContinuesOnTheNextLineWithoutItsLeadingBlanks) {
    EXPECT_EQ(read("path=/a/b\\\n   /c\nd=1\n"), (Pairs{{L"path", L"/a/b/c"}, {L"d", L"1"}}));
}

TEST_F(PropertyFile, CommentInsideAContinuedEntryIsSkipped) {
    EXPECT_EQ(read("path=/a/b\\\n# comment\\\n   /c\n"), (Pairs{{L"path", L"/a/b/c"}}));
}

TEST_F(PropertyFile, KeyContinuesToo) {
    EXPECT_EQ(read("ke\\\n  y=v\n"), (Pairs{{L"key", L"v"}}));
}

TEST_F(PropertyFile, EntryContinuedInsideItsKeyGoesOnUntilItsValueBegins) {
    EXPECT_EQ(read("a\\\nb\nc=d\n"), (Pairs{{L"abc", L"d"}}));
}

TEST_F(PropertyFile, SeparatorAtTheStartOfAContinuationLineIsDropped) {
    EXPECT_EQ(read("a=b\\\n=c=d\n"), (Pairs{{L"a", L"bc=d"}}));
    EXPECT_EQ(read("a=b\\\n: c\n"), (Pairs{{L"a", L"bc"}}));
}

TEST_F(PropertyFile, EntryThatIsPendingAtTheEndIsLost) {
    EXPECT_EQ(read("a=1\nb=2\\\n"), (Pairs{{L"a", L"1"}}));
    EXPECT_EQ(read("a=1\nb=2\\"), (Pairs{{L"a", L"1"}}));
    EXPECT_EQ(read("a=1\nb=2\\\n# comment\n\n"), (Pairs{{L"a", L"1"}}));
}

TEST_F(PropertyFile, ContinuationOfNothingButPairsOfBackslashesEndsTheEntry) {
    EXPECT_EQ(read("a=b\\\n\\\\\nc=d\n"), (Pairs{{L"a", L"b\\"}, {L"c", L"d"}}));
    EXPECT_EQ(read("a=b\\\n\\\\\\\\\nc=d\n"), (Pairs{{L"a", L"b\\\\"}, {L"c", L"d"}}));
}

TEST_F(PropertyFile, BackslashInFrontOfACarriageReturnDoesNotContinue) {
    EXPECT_EQ(read("a=b\\\r\nc=d\n"), (Pairs{{L"a", L"b"}, {L"c", L"d"}}));
}

// --- JVM options --------------------------------------------------------------------------------

TEST_F(PropertyFile, OptionKeepsItsSeparatorInTheValue) {
    EXPECT_EQ(read("-Xmx512m\n"), (Pairs{{L"-Xmx512m", L""}}));
    EXPECT_EQ(read("-Xbootclasspath/a:lib\n"), (Pairs{{L"-Xbootclasspath/a", L":lib"}}));
    EXPECT_EQ(read("-Xshareclasses:name=x\n"), (Pairs{{L"-Xshareclasses", L":name=x"}}));
    EXPECT_EQ(read("-Xa=:b\n"), (Pairs{{L"-Xa", L"=:b"}})) << "each one in front of the value";
}

TEST_F(PropertyFile, OtherOptionsLoseTheirSeparator) {
    EXPECT_EQ(read("-Da=b\n"), (Pairs{{L"-Da", L"b"}}));
    EXPECT_EQ(read("-xa:b\n"), (Pairs{{L"-xa", L"b"}}));
}

TEST_F(PropertyFile, LineOfOneCharacterInheritsTheKindOfTheLineBefore) {
    EXPECT_EQ(read("-Xa:b\n=\n"), (Pairs{{L"-Xa", L":b"}, {L"", L"="}}));
    EXPECT_EQ(read("ab=c\n=\n"), (Pairs{{L"ab", L"c"}, {L"", L""}}));
}

TEST_F(PropertyFile, KindOfAContinuedEntryIsThatOfItsFirstLine) {
    EXPECT_EQ(read("-Xa\\\nb:c\n"), (Pairs{{L"-Xab", L":c"}}));
    EXPECT_EQ(read("ab=c\\\n-Xd\n"), (Pairs{{L"ab", L"c-Xd"}}));
}

// --- Long lines and what is no text -------------------------------------------------------------

TEST_F(PropertyFile, LineOf3000BytesIsTwoEntries) {
    const Pairs found = read("k=" + std::string(2998, 'x') + "\n");
    EXPECT_EQ(found, (Pairs{{L"k", std::wstring(2022, L'x')}, {std::wstring(976, L'x'), L""}}));
}

TEST_F(PropertyFile, CutOfALongLineSplitsNoCharacter) {
    const Pairs found = read("k=" + std::string(2021, 'x') + "\u00E9y\n");
    EXPECT_EQ(found, (Pairs{{L"k", std::wstring(2021, L'x')}, {L"\u00E9y", L""}}));
}

TEST_F(PropertyFile, LineThatIsNoTextIsReportedAndLeftOut) {
    const test::Records records(folder_);
    EXPECT_EQ(read("a=1\n\nb=\xFF\nc=3\n"), (Pairs{{L"a", L"1"}, {L"c", L"3"}}));
    EXPECT_TRUE(
        records.text().starts_with("Error: readFile: " + folder_.narrow("file") + ": line 3 "))
        << records.text();
    EXPECT_TRUE(records.text().ends_with(" is no text and is left out.\n")) << records.text();
}

TEST_F(PropertyFile, ByteOrderMarkIsNoPartOfTheFirstKey) {
    EXPECT_EQ(read("\xEF\xBB\xBF"
                   "a=1\n"),
              (Pairs{{L"a", L"1"}}));
    EXPECT_EQ(read("\xEF\xBB\xBF# comment\na=1\n"), (Pairs{{L"a", L"1"}}));
    EXPECT_EQ(read("a=1\n\xEF\xBB\xBF"
                   "b=2\n"),
              (Pairs{{L"a", L"1"},
                     {L"\uFEFF"
                      L"b",
                      L"2"}}));
}

TEST_F(PropertyFile, ByteOrderMarkInFrontOfABlankLineOrOfBlanksMakesNoEntry) {
    EXPECT_EQ(read("\xEF\xBB\xBF\na=1\n"), (Pairs{{L"a", L"1"}}));
    EXPECT_EQ(read("\xEF\xBB\xBF \t\r\na=1\n"), (Pairs{{L"a", L"1"}}));
    EXPECT_EQ(read("\xEF\xBB\xBF  a=1\n"), (Pairs{{L"a", L"1"}}));
    EXPECT_EQ(read("\xEF\xBB\xBF"), Pairs());
}

// --- The rest -----------------------------------------------------------------------------------

TEST_F(PropertyFile, DataPathIsRepairedWhileItIsRead) {
    const test::ScopedVariable home("HOME", folder_.narrow());
    folder_.write("Library/Application Support/OVR Velmo Data/file", "");
    const std::string value = "${env.HOME}/Library/Application Support/ZUN Velmo Data";
    EXPECT_EQ(read("rcp.data.x=" + value + "/ws\nother=" + value + "/ws\n"),
              (Pairs{{L"rcp.data.x", L"${env.HOME}/Library/Application Support/OVR Velmo Data/ws"},
                     {L"other", L"${env.HOME}/Library/Application Support/ZUN Velmo Data/ws"}}));
}

TEST_F(PropertyFile, OriginIsTheFileAndTheEntrysFirstLine) {
    const PropertyList found = list("# comment\na=1\n\nb=2\\\n3\nc=4\n");
    std::vector<std::size_t> lines;
    for (const Property& entry : found.entries()) {
        ASSERT_NE(entry.origin.file, nullptr);
        EXPECT_EQ(*entry.origin.file, folder_.wide("file"));
        lines.push_back(entry.origin.line);
    }
    EXPECT_EQ(lines, (std::vector<std::size_t>{2, 4, 6}));
}

TEST_F(PropertyFile, TextNeedsNoFileAndBeginsBehindALine) {
    const auto file = std::make_shared<const std::wstring>(L"/f");
    const PropertyList found = parseProperties("a=1\n\nb=2", {file, 10});
    EXPECT_EQ(pairsOf(found), (Pairs{{L"a", L"1"}, {L"b", L"2"}}));
    EXPECT_EQ(found.entries().front().origin, (Origin{file, 11}));
    EXPECT_EQ(found.entries().back().origin, (Origin{file, 13}));
    EXPECT_EQ(parseProperties("a=1", {}).entries().front().origin.file, nullptr);
}

TEST_F(PropertyFile, EveryLineAndEntryIsTraced) {
    const test::Records records(folder_);
    setDebug(true);
    list("# 100%s\nk = v\\\n  w\n");
    setDebug(false);
    EXPECT_EQ(records.text(),
              "ZYPRA0032I: Prop Line = \"# 100%s\"\n"
              "ZYPRA0032I: Prop Line = \"k = v\\\"\n"
              "ZYPRA0032I: Prop Line = \"w\"\n"
              "ZYPRA0023I:   attrib = \"k\"\n"
              "ZYPRA0024I:   value  = \"vw\"\n");
}

TEST_F(PropertyFile, NothingIsTracedWithoutTracing) {
    const test::Records records(folder_);
    list("k=v\n");
    EXPECT_EQ(records.text(), "");
}

TEST_F(PropertyFile, FileThatCannotBeOpenedEndsTheLaunch) {
    PropertyList found;
    EXPECT_FATAL(getProperties(folder_.wide("missing"), found),
                 "ZYPRA0096E: Unable to load " + folder_.narrow("missing") +
                     " file! : No such file or directory\n");
    EXPECT_FATAL(getProperties(folder_.wide(), found),
                 "ZYPRA0096E: Unable to load .* file! : Is a directory\n");
}

TEST_F(PropertyFile, FileThatNeedNotBeThereMayBeMissingButNotBeNoFile) {
    PropertyList list;
    EXPECT_FALSE(getPropertiesIfThere(folder_.wide("missing"), list));
    EXPECT_TRUE(list.entries().empty());
    EXPECT_FATAL(getPropertiesIfThere(folder_.wide(), list),
                 "ZYPRA0096E: Unable to load .* file! : Is a directory\n");
    folder_.write("there", "key=value\n");
    EXPECT_TRUE(getPropertiesIfThere(folder_.wide("there"), list));
    EXPECT_EQ(*findProperty(Key(L"key"), list), L"value");
}

int opensMade = 0;

TEST_F(PropertyFile, OneThatIsThereAndCouldNotBeOpenedOnceEndsTheLaunch) {
    folder_.write("there", "key=value\n");
    PropertyList list;
    EXPECT_FATAL(
        {
            SystemCalls failing = systemCalls;
            failing.open = [](const char* path, int flags, mode_t mode) {
                errno = EIO;
                return opensMade++ == 0 ? -1 : kSystemsOwnCalls.open(path, flags, mode);
            };
            const InstalledCalls installed(failing);
            getPropertiesIfThere(folder_.wide("there"), list);
        },
        "ZYPRA0096E: Unable to load .*there file! : Input/output error\n");
}

#ifdef __linux__
TEST_F(PropertyFile, ReadThatFailsEndsTheLaunch) {
    // The process's memory is an ordinary file that opens and has nothing at its beginning.
    PropertyList list;
    EXPECT_FATAL(getProperties(L"/proc/self/mem", list),
                 "ZYPRA0096E: Unable to load /proc/self/mem file! : Input/output error\n");
    EXPECT_FATAL(getPropertiesIfThere(L"/proc/self/mem", list),
                 "ZYPRA0096E: Unable to load /proc/self/mem file! : Input/output error\n");
}
#endif

TEST_F(PropertyFile, FileLongerThanOneReadIsReadToItsEnd) {
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        text += "key." + std::to_string(i) + "=value\n";
    }
    folder_.write("long", text);
    PropertyList list;
    getProperties(folder_.wide("long"), list);
    ASSERT_EQ(list.entries().size(), 1000U);
    EXPECT_EQ(list.entries().back().key, L"key.999");
    EXPECT_EQ(list.entries().back().value, L"value");
}

}  // namespace
}  // namespace rcp
