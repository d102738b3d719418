// Trace and error records: what is written and when.
#include "diagnostics/svc_debug.h"

#include "tests/unit/records.h"

#include <errno.h>
#include <gmock/gmock.h>

#include <limits>

namespace rcp {
namespace {

using test::Records;
using testing::EndsWith;
using testing::StartsWith;

/// Collects the records of a test that traces.
class Tracing : public test::LauncherTest {
  protected:
    Tracing() : records_(folder_) { setDebug(true); }
    ~Tracing() override { setDebug(false); }
    Records records_;
};

class Errors : public test::LauncherTest {
  protected:
    Errors() : records_(folder_) {}
    Records records_;
};

const std::string kLongest(999, 'f');
constexpr Message<> kMessage{"message", "", ""};

// --- Tracing ------------------------------------------------------------------------------------

TEST_F(Errors, NothingIsTracedWhileTracingIsOff) {
    const std::vector<Argument> arguments = {L"a"};
    const FormatArgument values[] = {1L};
    SvcDebugOutA("text");
    SvcDebugOutA("%s", "text");
    SvcDebugOutA("%d", 1);
    SvcDebugOutW(L"%s", L"text");
    traceArguments(messages.mainArguments, arguments);
    SvcDebugOutA("%d", values);
    EXPECT_EQ(records_.text(), "");
}

TEST_F(Tracing, TextIsOneLineAsItStands) {
    SvcDebugOutA("100% of %s and %%");
    EXPECT_EQ(records_.text(), "100% of %s and %%\n");
}

TEST_F(Tracing, FormatTakesTextOrNumber) {
    SvcDebugOutA("a = %s", "x%d");
    SvcDebugOutA("setPreload(): symlink() result = %d", -1);
    EXPECT_EQ(records_.text(), "a = x%d\nsetPreload(): symlink() result = -1\n");
}

TEST_F(Tracing, WideFormatTakesWideText) {
    SvcDebugOutW(L"B\u00FCro \"%s\"", L"\u00E9");
    EXPECT_EQ(records_.text(), "B\u00FCro \"\u00E9\"\n");
}

TEST_F(Tracing, WhatCannotBeConvertedDoesNotLoseTheRecord) {
    const std::wstring bad = {L'a', static_cast<wchar_t>(0xD800), L'b'};
    SvcDebugOutW(L"text: %s.", bad);
    EXPECT_EQ(records_.text(), "text: a\uFFFDb.\n");
}

TEST_F(Tracing, LineFeedInTheTextIsKeptInFrontOfTheRecordsOwn) {
    SvcDebugOutA("line\n");
    EXPECT_EQ(records_.text(), "line\n\n");
}

TEST_F(Tracing, FormatOf999CharactersIsWritten) {
    SvcDebugOutA(kLongest);
    SvcDebugOutA(kLongest, "x");
    SvcDebugOutA(kLongest, 1);
    SvcDebugOutW(std::wstring(999, L'f'), L"x");
    SvcDebugOutA(kLongest, std::span<const FormatArgument>());
    const std::string line = kLongest + "\n";
    EXPECT_EQ(records_.text(), line + line + line + line + line);
}

TEST_F(Tracing, FormatOf1000CharactersIsDroppedWhole) {
    const std::string tooLong(1000, 'f');
    const std::wstring wideTooLong(1000, L'f');
    const std::vector<Argument> arguments = {L"a"};
    SvcDebugOutA(tooLong);
    SvcDebugOutA(tooLong, "x");
    SvcDebugOutA(tooLong, 1);
    SvcDebugOutW(wideTooLong, L"x");
    SvcDebugOutA(tooLong, std::span<const FormatArgument>());
    EXPECT_EQ(records_.text(), "");
}

TEST_F(Tracing, OnlyTheFormatsLengthCountsNotTheArguments) {
    SvcDebugOutA("%s", std::string(3000, 'x'));
    EXPECT_EQ(records_.text(), std::string(3000, 'x') + "\n");
}

TEST_F(Tracing, LengthOfAWideFormatIsInCharacters) {
    SvcDebugOutW(std::wstring(999, L'\u00E9'), L"");
    EXPECT_EQ(records_.text().size(), 2U * 999 + 1);
}

TEST_F(Tracing, FormatTakesAnyNumberOfArguments) {
    const FormatArgument values[] = {std::string_view("a"), 1L, std::wstring_view(L"c")};
    SvcDebugOutA("%s %d %ls", values);
    EXPECT_EQ(records_.text(), "a 1 c\n");
}

TEST_F(Tracing, DumpListsEveryArgumentAndEndsWithAnEmptyLine) {
    const std::vector<Argument> arguments = {L"a", L"b"};
    traceArguments(messages.mainArguments, arguments);
    EXPECT_EQ(records_.text(), "ZYPRA0030I: rcplauncher main arguments=\"a, b, \"\n\n");
}

TEST_F(Tracing, DumpOfNoArgumentsIsAPairOfQuotes) {
    traceArguments(kMessage, {});
    EXPECT_EQ(records_.text(), "message=\"\"\n\n");
}

TEST_F(Tracing, PercentSignsOfDumpedArgumentsAreDirectives) {
    const std::vector<Argument> arguments = {L"100%%", L"%s%n%d", L"50%"};
    traceArguments(kMessage, arguments);
    EXPECT_EQ(records_.text(), "message=\"100%, %s%n%d, 50%, \"\n\n");
}

TEST_F(Tracing, DumpThatIsTooLongIsCutToOneRecord) {
    const std::vector<Argument> arguments = {std::wstring(5000, L'x')};
    traceArguments(kMessage, arguments);
    EXPECT_EQ(records_.text().size(), 4096U);
}

TEST_F(Tracing, RecordIsCutAt4095BytesInFrontOfItsLineFeed) {
    SvcDebugOutA("%s", std::string(4095, 'x'));
    SvcDebugOutA("%s", std::string(4096, 'y'));
    EXPECT_EQ(records_.text(), std::string(4095, 'x') + "\n" + std::string(4095, 'y') + "\n");
}

TEST_F(Tracing, CutNeverSplitsACharacter) {
    SvcDebugOutA("%s", std::string(4094, 'x') + "\u00E9");
    EXPECT_EQ(records_.text(), std::string(4094, 'x') + "\n");
}

// --- The switch ---------------------------------------------------------------------------------

TEST_F(Errors, SwitchTellsTheFormerValue) {
    EXPECT_FALSE(setDebug(true));
    EXPECT_TRUE(debug);
    EXPECT_TRUE(setDebug(true));
    EXPECT_TRUE(setDebug(false));
    EXPECT_FALSE(debug);
    EXPECT_FALSE(setDebug(false));
}

TEST_F(Errors, ForcedRecordIsWrittenAndTracingIsAsBefore) {
    for (const bool before : {false, true}) {
        setDebug(before);
        {
            const ForcedTracing forced;
            SvcDebugOutA("forced");
        }
        EXPECT_EQ(debug, before);
    }
    EXPECT_EQ(records_.text(), "forced\nforced\n");
}

TEST_F(Errors, WhatTheUserAskedForIsKnownWhileTracingIsForced) {
    for (const bool asked : {false, true}) {
        setDebug(asked);
        const ForcedTracing outer;
        {
            const ForcedTracing inner;
            EXPECT_EQ(isTracingAsked(), asked);
        }
        EXPECT_EQ(isTracingAsked(), asked);
    }
    setDebug(true);
    EXPECT_TRUE(isTracingAsked());
}

// --- Errors -------------------------------------------------------------------------------------

TEST_F(Errors, ErrorIsWrittenWhileTracingIsOffAndItsTextIsReturned) {
    const FormatArgument values[] = {std::string_view("x"), 3L};
    EXPECT_EQ(reportRecord(noReason(), "ZYPRA0000E: %s %d", values), "ZYPRA0000E: x 3");
    EXPECT_EQ(records_.text(), "ZYPRA0000E: x 3\n");
}

TEST_F(Errors, ReasonIsWhatTheReportStatesWhateverErrnoHolds) {
    errno = EACCES;
    reportRecord(noReason(), "none", {});
    reportRecord(because(ENOENT), "system", {});
    reportRecord(because(0), "a call without errno", {});
    reportRecord(because("not a regular file"), "words", {});
    reportRecord(noReason().at(L"/\u00E9"), "place", {});
    reportRecord(because(ENOENT).at(L"line 3"), "both", {});
    reportRecord(because(ENOENT).at(L""), "nowhere", {});
    EXPECT_EQ(records_.text(),
              "none\nsystem : No such file or directory\na call without errno\n"
              "words : not a regular file\nplace (/\u00E9)\n"
              "both (line 3) : No such file or directory\nnowhere : No such file or directory\n");
}

TEST_F(Errors, ReportTakesNarrowAndWideTextsAndNumbers) {
    reportRecord(noReason(), "a %% b %s", {});
    constexpr Message<Text, Text, Number> kThree{"%s %ls %d", "", ""};
    report(noReason(), kThree, "narrow", std::wstring(L"wide \u00E9"), 3);
    EXPECT_EQ(records_.text(), "a % b %s\nnarrow wide \u00E9 3\n");
}

TEST_F(Errors, ReasonGoesIntoTheRoomThatIsLeft) {
    const std::string text(4090, 'x');
    EXPECT_EQ(reportRecord(because(ENOENT), text, {}), text + " : No");
    EXPECT_EQ(reportRecord(because(ENOENT), std::string(5000, 'y'), {}), std::string(4095, 'y'));
    EXPECT_EQ(records_.text().size(), 2U * 4096);
}

TEST_F(Errors, LongFormatOfAnErrorIsNotDropped) {
    reportRecord(noReason(), std::string(2000, 'x'), {});
    EXPECT_EQ(records_.text(), std::string(2000, 'x') + "\n");
}

TEST_F(Errors, FatalReportEndsWithStatus255) {
    EXPECT_FATAL(fatal(because(ENOENT), messages.fileNotLoaded, L"/x"),
                 "ZYPRA0096E: Unable to load /x file! : No such file or directory\n");
    EXPECT_FATAL(fatal(because(ENOENT), messages.lockNotCreated, 2), "errno=2 : No such file");
    EXPECT_FATAL((errno = ENOENT, fatal(noReason(), messages.localeNotSet)), "error!\n");
}

TEST_F(Errors, EndOfALaunchCarriesItsStatusAndItsRecord) {
    const LaunchEnded fatalEnd =
        test::endOfLaunch([] { fatal(because(ENOENT), messages.lockNotCreated, 1); });
    EXPECT_EQ(fatalEnd.status, 255);
    EXPECT_EQ(fatalEnd.record,
              "ZYPRA0199E: CreateLockFile failed. errno=1 : No such file or directory");
    EXPECT_EQ(records_.text(), fatalEnd.record + "\n");
    const LaunchEnded plainEnd = test::endOfLaunch([] { endLaunch(3); });
    EXPECT_EQ(plainEnd.status, 3);
    EXPECT_EQ(plainEnd.record, "");
}

TEST_F(Errors, LastErrorMessageNamesNumberAndText) {
    errno = ENOENT;
    EXPECT_EQ(GetLastErrorMsg(), " Failed with error 2: No such file or directory");
    errno = EACCES;
    EXPECT_EQ(GetLastErrorMsg(), " Failed with error 13: Permission denied");
}

TEST_F(Errors, TimeStringIsDateTimeAndMilliseconds) {
    const std::wstring time = getTimeString();
    const std::string narrow(time.begin(), time.end());
    EXPECT_THAT(narrow, testing::MatchesRegex("2[0-9][0-9][0-9][01][0-9][0-3][0-9]_"
                                              "[0-2][0-9][0-5][0-9][0-6][0-9]_[0-9][0-9][0-9]"));
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kAllocatorEndsTheProcess = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kAllocatorEndsTheProcess = true;
#else
constexpr bool kAllocatorEndsTheProcess = false;
#endif
#else
constexpr bool kAllocatorEndsTheProcess = false;
#endif

TEST_F(Errors, RunningOutOfMemoryEndsWithARecord) {
    if (kAllocatorEndsTheProcess) {
        GTEST_SKIP() << "the sanitizer's allocator ends the process itself";
    }
    volatile std::size_t tooMuch = std::numeric_limits<std::ptrdiff_t>::max() / 2;
    EXPECT_EXIT(
        {
            enableLogging(folder_.wide());
            installOutOfMemoryReport();
            ::operator delete(::operator new(tooMuch));
        },
        testing::ExitedWithCode(255), "");
    EXPECT_THAT(folder_.read("rcplauncher.log"),
                testing::EndsWith("ZYPRA0004E: malloc failed! : Cannot allocate memory\n"));
}

}  // namespace
}  // namespace rcp
