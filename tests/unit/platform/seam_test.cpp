// The functions whose implementation differs between the systems: both must pass the same tests.
#include "platform/platform.h"
#include "platform/property_list_guard.h"
#include "tests/unit/child_process.h"
#include "tests/unit/platform/hidden_nesting.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using rcp::platform::absolutePath;
using rcp::platform::equalIgnoringCase;
using rcp::platform::executablePathAsStarted;
using rcp::platform::isSafeBinaryPropertyList;
using rcp::platform::parsePropertyList;
using rcp::platform::PropertyListDocument;

class PlatformSeam : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_NE(setlocale(LC_CTYPE, rcp::platform::kUtf8LocaleName), nullptr);
    }
};

using ExecutablePath = PlatformSeam;
using AbsolutePath = PlatformSeam;
using EqualIgnoringCase = PlatformSeam;
using PropertyList = PlatformSeam;

// --- Executable path and system -----------------------------------------------------------------

std::string programName() {
#ifdef __APPLE__
    return getprogname();
#else
    return program_invocation_short_name;
#endif
}

TEST_F(ExecutablePath, IsAbsoluteAndNamesTheRunningProgram) {
    const std::string path = executablePathAsStarted();
    ASSERT_FALSE(path.empty());
    EXPECT_EQ(path.front(), '/');
    EXPECT_EQ(access(path.c_str(), X_OK), 0) << path;
    EXPECT_EQ(path.substr(path.rfind('/') + 1), programName());
}

TEST_F(ExecutablePath, StaysTheSameAfterTheWorkingDirectoryChanged) {
    const std::string before = executablePathAsStarted();
    const int here = open(".", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(here, 0);
    ASSERT_EQ(chdir("/"), 0);
    const std::string after = executablePathAsStarted();
    ASSERT_EQ(fchdir(here), 0);
    close(here);
    EXPECT_EQ(after, before);
}

TEST_F(PlatformSeam, ExecutableOfAProcessIsWithoutLinks) {
    EXPECT_EQ(rcp::platform::executableOfProcess(getpid()),
              std::filesystem::canonical(executablePathAsStarted()).string());
    EXPECT_EQ(rcp::platform::executableOfProcess(rcp::test::deadProcessId()), std::nullopt);
    const std::string own = std::filesystem::canonical(executablePathAsStarted()).string();
    EXPECT_FALSE(rcp::platform::isOwnExecutable("/./" + own));
    EXPECT_FALSE(rcp::platform::isOwnExecutable(own + " (deleted)"));
}

TEST_F(PlatformSeam, StartOfAProcessIsItsOwnAsLongAsItLives) {
    using rcp::platform::startOfProcess;
    const std::optional<std::string> own = startOfProcess(getpid());
    ASSERT_TRUE(own.has_value());
    EXPECT_EQ(own, startOfProcess(getpid()));
    EXPECT_EQ(own->find_first_of(" \n"), std::string::npos);
    usleep(50000);  // the system counts in hundredths of a second
    rcp::test::ChildProcess other([] { return pause(); });
    const std::optional<std::string> others = startOfProcess(other.pid());
    ASSERT_TRUE(others.has_value());
    EXPECT_NE(others, own);
    kill(other.pid(), SIGKILL);
    ASSERT_TRUE(other.endsWithin(std::chrono::seconds(10)));
    EXPECT_EQ(startOfProcess(other.pid()), std::nullopt) << "ended, but not yet waited for";
    other.wait();
    EXPECT_EQ(startOfProcess(other.pid()), std::nullopt);
}

TEST_F(PlatformSeam, StartOfAProcessStaysWhenItBecomesAnotherProgram) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const rcp::test::ChildProcess child([&] {
        char go = 0;
        (void)!read(ends[0], &go, 1);
        return execl("/bin/sleep", "(a b) Z", "1000", nullptr);
    });
    const auto before = rcp::platform::startOfProcess(child.pid());
    ASSERT_EQ(write(ends[1], "g", 1), 1);
    const std::string self = rcp::platform::executableOfProcess(getpid()).value_or("");
    while (rcp::platform::executableOfProcess(child.pid()) == self) {
        usleep(1000);
    }
    EXPECT_EQ(rcp::platform::startOfProcess(child.pid()), before);
    close(ends[0]);
    close(ends[1]);
}

#ifdef __linux__
TEST_F(PlatformSeam, ExecutableOfAProcessMayHaveAPathOfAnyLength) {
    const rcp::test::TestFolder folder;
    std::string name;
    for (int i = 0; i < 8; ++i) {
        name += std::string(200, 'd') + "/";
    }
    std::filesystem::create_directories(folder.path() / name);
    const std::string program = std::filesystem::canonical(folder.path()) / name / "sleep";
    std::filesystem::copy_file("/bin/sleep", program);
    const rcp::test::ChildProcess child(program, "sleep", "1000");
    for (int round = 0; rcp::platform::executableOfProcess(child.pid()) != program; ++round) {
        ASSERT_LT(round, 60'000);
        usleep(1000);  // until it has become the program
    }
}
#endif

#ifdef __linux__
TEST_F(PlatformSeam, LinuxHasNoProductVersion) {
    EXPECT_EQ(rcp::platform::productVersion(), "");
}
#endif

// --- Absolute paths -----------------------------------------------------------------------------

TEST_F(AbsolutePath, NameIsPlacedInTheBase) {
    EXPECT_EQ(absolutePath("/Users/a b", "ws"), "/Users/a b/ws");
    EXPECT_EQ(absolutePath("/Users/a b", "one/two"), "/Users/a b/one/two");
    EXPECT_EQ(absolutePath("/", "ws"), "/ws");
}

TEST_F(AbsolutePath, LeadingDotAndTrailingSlashVanish) {
    EXPECT_EQ(absolutePath("/Users/a b", "./ws"), "/Users/a b/ws");
    EXPECT_EQ(absolutePath("/Users/a b", "ws/"), "/Users/a b/ws");
    EXPECT_EQ(absolutePath("/Users/a b", "ws/."), "/Users/a b/ws");
}

TEST_F(AbsolutePath, DotDotTakesTheElementBeforeIt) {
    EXPECT_EQ(absolutePath("/Users/a b", "a/../b"), "/Users/a b/b");
    EXPECT_EQ(absolutePath("/Users/a b", "../x"), "/Users/x");
    EXPECT_EQ(absolutePath("/Users/a b", "a/.."), "/Users/a b");
}

TEST_F(AbsolutePath, DotIsTheBase) {
    EXPECT_EQ(absolutePath("/Users/a b", "."), "/Users/a b");
}

TEST_F(AbsolutePath, EmptyPathIsTheBase) {
    EXPECT_EQ(absolutePath("/Users/a b", ""), "/Users/a b");
}

TEST_F(AbsolutePath, EmptyElementInTheMiddleIsKept) {
    EXPECT_EQ(absolutePath("/Users/a b", "a//b"), "/Users/a b/a//b");
}

TEST_F(AbsolutePath, CharactersSpecialInUrlsAreOrdinary) {
    EXPECT_EQ(absolutePath("/Users/a b", "c d#e?f%20g;h"), "/Users/a b/c d#e?f%20g;h");
    EXPECT_EQ(absolutePath("/50%25", "~a:b"), "/50%25/~a:b");
    EXPECT_EQ(absolutePath("/Users/a b", "...x"), "/Users/a b/...x");
}

TEST_F(AbsolutePath, AbsolutePathIsUntouched) {
    EXPECT_EQ(absolutePath("/Users/a b", "/a/../b/"), "/a/../b/");
    EXPECT_EQ(absolutePath("/Users/a b", "/"), "/");
}

TEST_F(AbsolutePath, LongerThanAnyFixedBuffer) {
    const std::string name(5000, 'n');
    EXPECT_EQ(absolutePath("/Users/a b", name), "/Users/a b/" + name);
}

#ifdef __linux__
TEST_F(AbsolutePath, MoreDotDotThanElementsEndsAtTheRoot) {
    EXPECT_EQ(absolutePath("/Users/a b", "../.."), "/");
    EXPECT_EQ(absolutePath("/Users/a b", "../../../.."), "/");
    EXPECT_EQ(absolutePath("/Users/a b", "../../../x"), "/x");
}
#endif

TEST_F(AbsolutePath, RelativeBaseGivesNothing) {
    EXPECT_FALSE(absolutePath("a", "b").has_value());
}

// --- Case ---------------------------------------------------------------------------------------

TEST_F(EqualIgnoringCase, AsciiLetters) {
    EXPECT_TRUE(equalIgnoringCase("org.Example.CLIENT", "ORG.example.client"));
    EXPECT_TRUE(equalIgnoringCase("", ""));
}

TEST_F(EqualIgnoringCase, LettersOutsideAscii) {
    EXPECT_TRUE(equalIgnoringCase("\u00C9t\u00C9", "\u00E9T\u00E9"));
    EXPECT_TRUE(equalIgnoringCase("\u0416\u03A9", "\u0436\u03C9"));
    EXPECT_TRUE(equalIgnoringCase("\uFF21", "\uFF41"));
    EXPECT_TRUE(equalIgnoringCase("\U00010400", "\U00010428"));
}

TEST_F(EqualIgnoringCase, DifferentTextsDiffer) {
    EXPECT_FALSE(equalIgnoringCase("\u00C9", "E"));
    EXPECT_FALSE(equalIgnoringCase("client", "client2"));
    EXPECT_FALSE(equalIgnoringCase("client", ""));
    EXPECT_FALSE(equalIgnoringCase("a_b", "a-b"));
}

TEST_F(EqualIgnoringCase, BytesThatAreNoUtf8EqualOnlyThemselves) {
    for (const std::string bad : {"\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80"}) {
        EXPECT_TRUE(equalIgnoringCase(bad + "A", bad + "A"));
        EXPECT_FALSE(equalIgnoringCase(bad + "A", bad + "a"));
    }
}

// --- Property lists -----------------------------------------------------------------------------

std::string xmlList(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n" +
           body + "\n</plist>\n";
}

std::string repeated(const std::string& text, std::size_t times) {
    std::string result;
    result.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

const char* const kBundleBody =
    "<dict>\n"
    "  <!-- <dict> in a comment -->\n"
    "  <key>CFBundleIdentifier</key><string>org.example.client</string>\n"
    "  <key>CFBundleName</key><string>B\u00FCro &amp; &lt;Co&gt;</string>\n"
    "  <key>levels</key><array><integer>1</integer><real>2.5</real><true/></array>\n"
    "</dict>";

// {CFBundleIdentifier: "org.example.client", CFBundleName: "B<u umlaut>ro", levels: [1, 2.5, true]}
const std::vector<unsigned char> kBinaryBundle = {
    0x62, 0x70, 0x6c, 0x69, 0x73, 0x74, 0x30, 0x30, 0xd3, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x5f,
    0x10, 0x12, 0x43, 0x46, 0x42, 0x75, 0x6e, 0x64, 0x6c, 0x65, 0x49, 0x64, 0x65, 0x6e, 0x74, 0x69,
    0x66, 0x69, 0x65, 0x72, 0x5c, 0x43, 0x46, 0x42, 0x75, 0x6e, 0x64, 0x6c, 0x65, 0x4e, 0x61, 0x6d,
    0x65, 0x56, 0x6c, 0x65, 0x76, 0x65, 0x6c, 0x73, 0x5f, 0x10, 0x12, 0x6f, 0x72, 0x67, 0x2e, 0x65,
    0x78, 0x61, 0x6d, 0x70, 0x6c, 0x65, 0x2e, 0x63, 0x6c, 0x69, 0x65, 0x6e, 0x74, 0x64, 0x00, 0x42,
    0x00, 0xfc, 0x00, 0x72, 0x00, 0x6f, 0xa3, 0x07, 0x08, 0x09, 0x10, 0x01, 0x23, 0x40, 0x04, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x09, 0x08, 0x0f, 0x24, 0x31, 0x38, 0x4d, 0x56, 0x5a, 0x5c, 0x65,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0a,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x66};

std::string binaryBundle() {
    return {kBinaryBundle.begin(), kBinaryBundle.end()};
}

std::string bigEndian(std::size_t value, int bytes) {
    std::string result;
    for (int i = bytes - 1; i >= 0; --i) {
        result += static_cast<char>(value >> (8 * i) & 0xFF);
    }
    return result;
}

/// A binary list of the given encoded objects, one of them at the top; references have 4 bytes.
std::string binaryList(const std::vector<std::string>& objects, std::size_t top = 0) {
    std::string list = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += bigEndian(list.size(), 4);
        list += object;
    }
    const std::size_t tableAt = list.size();
    return list + table + std::string(6, '\0') + "\x04\x04" + bigEndian(objects.size(), 8) +
           bigEndian(top, 8) + bigEndian(tableAt, 8);
}

/// Arrays of `width` references each, every one to the next array; the last one holds `last`, a "true".
std::string binaryChain(std::size_t length, std::size_t width, const std::string& last = "\x09") {
    std::vector<std::string> objects;
    for (std::size_t i = 0; i < length; ++i) {
        objects.push_back(static_cast<char>(0xA0 | width) + repeated(bigEndian(i + 1, 4), width));
    }
    objects.push_back(last);
    return binaryList(objects);
}

TEST_F(PropertyList, StringIsReadFromXml) {
    const auto list = parsePropertyList(xmlList(kBundleBody));
    ASSERT_TRUE(list.has_value());
    EXPECT_TRUE(list->isDictionary());
    EXPECT_EQ(list->stringForKey("CFBundleIdentifier"), "org.example.client");
    EXPECT_EQ(list->stringForKey("CFBundleName"), "B\u00FCro & <Co>");
}

TEST_F(PropertyList, StringIsReadFromBinary) {
    const auto list = parsePropertyList(binaryBundle());
    ASSERT_TRUE(list.has_value());
    EXPECT_TRUE(list->isDictionary());
    EXPECT_EQ(list->stringForKey("CFBundleIdentifier"), "org.example.client");
    EXPECT_EQ(list->stringForKey("CFBundleName"), "B\u00FCro");
}

TEST_F(PropertyList, ByteOrderMarkAndBlankLinesInFrontAreAllowed) {
    const auto blank =
        parsePropertyList("\n <plist version=\"1.0\">\n" + std::string(kBundleBody) + "</plist>");
    ASSERT_TRUE(blank.has_value());
    EXPECT_EQ(blank->stringForKey("CFBundleIdentifier"), "org.example.client");
    const auto marked = parsePropertyList("\xEF\xBB\xBF" + xmlList(kBundleBody));
    ASSERT_TRUE(marked.has_value());
    EXPECT_EQ(marked->stringForKey("CFBundleIdentifier"), "org.example.client");
}

TEST_F(PropertyList, MissingKeyAndOtherKindsGiveNoString) {
    const auto list = parsePropertyList(xmlList(kBundleBody));
    ASSERT_TRUE(list.has_value());
    EXPECT_FALSE(list->stringForKey("mlauncher.path").has_value());
    EXPECT_FALSE(list->stringForKey("levels").has_value());
    EXPECT_FALSE(list->stringForKey("").has_value());
}

TEST_F(PropertyList, OnlyTrueIsTrue) {
    const auto list = parsePropertyList(
        xmlList("<dict><key>yes</key><true/><key>no</key><false/><key>text</key>"
                "<string>true</string><key>number</key><integer>1</integer></dict>"));
    ASSERT_TRUE(list.has_value());
    EXPECT_TRUE(list->isTrue("yes"));
    for (const char* other : {"no", "text", "number", "missing"}) {
        EXPECT_FALSE(list->isTrue(other)) << other;
    }
    const auto array = parsePropertyList(xmlList("<array><true/></array>"));
    ASSERT_TRUE(array.has_value());
    EXPECT_FALSE(array->isTrue("yes"));
}

TEST_F(PropertyList, EmptyStringIsAString) {
    const auto list = parsePropertyList(xmlList("<dict><key>a</key><string></string></dict>"));
    ASSERT_TRUE(list.has_value());
    EXPECT_EQ(list->stringForKey("a"), "");
}

TEST_F(PropertyList, ArrayAtTheTopIsNoDictionary) {
    auto list = parsePropertyList(xmlList("<array><string>a</string></array>"));
    ASSERT_TRUE(list.has_value());
    EXPECT_FALSE(list->isDictionary());
    EXPECT_FALSE(list->stringForKey("a").has_value());
    list->setString("a", "b");
    EXPECT_FALSE(list->isDictionary());
}

TEST_F(PropertyList, WhatIsNoListIsRefused) {
    EXPECT_FALSE(parsePropertyList("").has_value());
    EXPECT_FALSE(parsePropertyList(" \n\t").has_value());
    EXPECT_FALSE(parsePropertyList("key=value\n").has_value());
    EXPECT_FALSE(parsePropertyList("<").has_value());
    EXPECT_FALSE(parsePropertyList("<plist>").has_value());
    EXPECT_FALSE(parsePropertyList("<dict><key>a</key></array>").has_value());
    EXPECT_FALSE(parsePropertyList(xmlList("<dict><key>a</key><string>b</dict>")).has_value());
    EXPECT_FALSE(parsePropertyList("bplist00").has_value());
    EXPECT_FALSE(parsePropertyList("bplist00" + std::string(100, '\xFF')).has_value());
    EXPECT_FALSE(parsePropertyList(std::string(64, '\0')).has_value());
}

TEST_F(PropertyList, CutListsAreRefusedOrReadButNeverHarmful) {
    const std::string xml = xmlList(kBundleBody);
    for (std::size_t length = 0; length < xml.size(); ++length) {
        parsePropertyList(xml.substr(0, length));
    }
    const std::string binary = binaryBundle();
    for (std::size_t length = 0; length < binary.size(); ++length) {
        EXPECT_FALSE(parsePropertyList(binary.substr(0, length)).has_value()) << length;
    }
}

TEST_F(PropertyList, BinaryWithOneByteChangedIsNeverHarmful) {
    for (std::size_t at = 8; at < kBinaryBundle.size(); ++at) {
        for (const int flip : {0x01, 0x0F, 0x10, 0x80, 0xFF}) {
            std::string bytes = binaryBundle();
            bytes[at] = static_cast<char>(bytes[at] ^ flip);
            const auto list = parsePropertyList(bytes);
            if (list && list->isDictionary()) {
                static_cast<void>(list->stringForKey("CFBundleIdentifier"));
                static_cast<void>(list->toXml());
            }
        }
    }
}

TEST_F(PropertyList, DeeplyNestedXmlIsRefused) {
    EXPECT_FALSE(parsePropertyList(xmlList(repeated("<array>", 100000))).has_value());
    EXPECT_FALSE(
        parsePropertyList(xmlList(repeated("<array>", 60000) + repeated("</array>", 60000)))
            .has_value());
    EXPECT_FALSE(parsePropertyList(xmlList(repeated("<dict><key>a</key>", 40000))).has_value());
}

TEST_F(PropertyList, NestingHiddenFromASimpleScanIsRefused) {
    const std::string open = repeated("<array>", 1000);
    EXPECT_FALSE(parsePropertyList(xmlList("<!-->" + open + "-->")).has_value());
    EXPECT_FALSE(parsePropertyList(xmlList("<?>" + open + "?>")).has_value());
    EXPECT_FALSE(parsePropertyList(xmlList(repeated("<array a=\">\" b=\"/>", 1000))).has_value());
    EXPECT_FALSE(
        parsePropertyList(xmlList("<!DOCTYPE a [ <!ENTITY b \"]>\"> ]>" + open)).has_value());
    // The same in 16-bit units.
    std::string wide = "\xFF\xFE";
    for (const char c : xmlList(open + repeated("</array>", 1000))) {
        wide += {c, '\0'};
    }
    EXPECT_FALSE(parsePropertyList(wide).has_value());
}

TEST_F(PropertyList, TextInCdataIsNoMarkup) {
    const std::string deep = repeated("<array>", 1000);
    for (const std::string& text : {std::string(), std::string("]"), std::string(">"), deep}) {
        const auto list = parsePropertyList(
            xmlList("<dict><key>a</key><string><![CDATA[" + text + "]]></string></dict>"));
        ASSERT_TRUE(list.has_value()) << text;
        EXPECT_EQ(list->stringForKey("a"), text);
    }
}

TEST_F(PropertyList, ModeratelyNestedXmlIsRead) {
    EXPECT_TRUE(parsePropertyList(xmlList(repeated("<array>", 100) + repeated("</array>", 100)))
                    .has_value());
}

TEST_F(PropertyList, DeeplyNestedBinaryIsRefused) {
    EXPECT_TRUE(parsePropertyList(binaryChain(100, 1)).has_value());
    EXPECT_FALSE(parsePropertyList(binaryChain(200, 1)).has_value());
    EXPECT_FALSE(parsePropertyList(binaryChain(100000, 1)).has_value());
}

TEST_F(PropertyList, BinaryAtTheLimitIsReadAgainWhenItIsWritten) {
    constexpr std::size_t kMost = rcp::platform::kMaxPropertyListDepth - 1;
    for (const std::string& last :
         {std::string("\x08"), std::string("\x09"), "\x10" + bigEndian(7, 1),
          "\x11" + bigEndian(7, 2), "\x12" + bigEndian(7, 4), "\x13" + bigEndian(7, 8),
          "\x14" + bigEndian(0, 8) + bigEndian(7, 8), "\x22" + bigEndian(0x3FC00000, 4),
          "\x23" + bigEndian(0x3FF8000000000000, 8), "\x33" + bigEndian(0x41CDCD6500000000, 8),
          std::string("\x40"), std::string("\x42zz"), std::string("\x50"), std::string("\x51z"),
          "\x61" + bigEndian(0xFC, 2), std::string("\xA0"), std::string("\xD0")}) {
        const auto list = parsePropertyList(binaryChain(kMost, 1, last));
        ASSERT_TRUE(list.has_value()) << std::hex << +static_cast<unsigned char>(last[0]);
        EXPECT_TRUE(parsePropertyList(list->toXml()).has_value()) << list->toXml();
        EXPECT_FALSE(parsePropertyList(binaryChain(kMost + 1, 1, last)).has_value());
    }
}

// They are written as a dictionary, one level deeper.
TEST_F(PropertyList, ReferencesOfArchivesAreRefused) {
    EXPECT_TRUE(isSafeBinaryPropertyList(binaryChain(1, 1, "\x10\x05")));
    for (const int size : {1, 2, 4, 8}) {
        const std::string reference = static_cast<char>(0x7F + size) + bigEndian(5, size);
        EXPECT_FALSE(isSafeBinaryPropertyList(binaryChain(1, 1, reference))) << size;
    }
    const auto dictionary = [](const std::string& key) {
        return binaryList({"\xD1" + bigEndian(1, 4) + bigEndian(2, 4),
                           static_cast<char>(0x50 + key.size()) + key, "\x10\x05"});
    };
    EXPECT_TRUE(isSafeBinaryPropertyList(dictionary("CF$UIE")));
    EXPECT_FALSE(isSafeBinaryPropertyList(dictionary("CF$UID")));
}

TEST_F(PropertyList, NestingBehindHalfALetterIsRefused) {
    for (const auto& [encoding, begin, end] : rcp::test::kHidingEncodings) {
        const std::string hidden = rcp::test::nestingHiddenBy(begin, end);
        EXPECT_TRUE(parsePropertyList(rcp::test::declaring("UTF-8", hidden)).has_value())
            << encoding;
        EXPECT_FALSE(parsePropertyList(rcp::test::declaring(encoding, hidden)).has_value())
            << encoding;
    }
}

TEST_F(PropertyList, BinaryThatUnfoldsWithoutBoundIsRefused) {
    EXPECT_FALSE(parsePropertyList(binaryChain(60, 2)).has_value());
}

TEST_F(PropertyList, BinaryThatHoldsItselfIsRefused) {
    EXPECT_FALSE(parsePropertyList(binaryList({"\xA1" + bigEndian(0, 4)})).has_value());
    EXPECT_FALSE(isSafeBinaryPropertyList(binaryList({"\x09", "\xA1" + bigEndian(1, 4)}, 1)));
}

// One parser takes the first of them, the other the last.
TEST_F(PropertyList, BinaryWithAKeyTwiceIsRefused) {
    const auto references = [](std::initializer_list<std::size_t> objects) {
        std::string bytes;
        for (const std::size_t object : objects) {
            bytes += bigEndian(object, 4);
        }
        return bytes;
    };
    const std::string wideA("\x61\x00\x61", 3);
    const std::vector<std::string> objects = {
        "\x51\x61",                         // "a"
        wideA,                              // "a" in 16-bit units
        "\x51\x62",                         // "b"
        "\xD2" + references({0, 2, 2, 2}),  // {a: b, b: b}
        "\xD2" + references({0, 0, 2, 2}),  // {a: b, a: b}
        "\xD2" + references({0, 1, 2, 2}),  // {a: b, a: b}, told apart by their bytes alone
    };
    EXPECT_TRUE(isSafeBinaryPropertyList(binaryList(objects, 3)));
    EXPECT_FALSE(isSafeBinaryPropertyList(binaryList(objects, 4)));
    EXPECT_FALSE(isSafeBinaryPropertyList(binaryList(objects, 5)));
}

// More than fourteen elements, or characters, and their number follows in an integer of its own.
TEST_F(PropertyList, BinaryNumbersThatFollowMayHaveAnySize) {
    const std::string text(20, 'b');
    for (const std::string& number :
         {std::string("\x10\x14", 2), std::string("\x11\x00\x14", 3),
          std::string("\x12\x00\x00\x00\x14", 5), "\x13" + std::string(7, '\0') + "\x14"}) {
        const auto list = parsePropertyList(binaryList(
            {"\x51\x61", "\x5F" + number + text, "\xD1" + bigEndian(0, 4) + bigEndian(1, 4)}, 2));
        ASSERT_TRUE(list.has_value()) << number.size();
        EXPECT_EQ(list->stringForKey("a"), text);
    }
    std::string references;
    for (int i = 0; i < 20; ++i) {
        references += bigEndian(0, 4);
    }
    EXPECT_TRUE(isSafeBinaryPropertyList(binaryList({"\x09", "\xAF\x10\x14" + references}, 1)));
    EXPECT_FALSE(isSafeBinaryPropertyList(binaryList({"\x09", "\xAF\x14\x14" + references}, 1)))
        << "an integer of 16 bytes";
    EXPECT_FALSE(isSafeBinaryPropertyList(binaryList({"\x09", "\xAF\x20\x14" + references}, 1)))
        << "no integer";
}

TEST_F(PropertyList, BinaryWithAKeyThatIsNoTextIsRefused) {
    const std::vector<std::string> objects = {std::string("\x10\x07"), "\x51\x62",
                                              "\xD1" + bigEndian(0, 4) + bigEndian(1, 4)};
    EXPECT_FALSE(isSafeBinaryPropertyList(binaryList(objects, 2)));
}

TEST_F(PropertyList, TextThatParsersEndOrReadDifferentlyIsRefused) {
    const auto text = [](std::string_view bytes) {
        return isSafeBinaryPropertyList(binaryList({std::string(bytes)}));
    };
    using namespace std::string_literals;
    using namespace std::string_view_literals;
    EXPECT_TRUE(text("\x52\x61\x7F"sv));
    EXPECT_FALSE(text("\x52\x61\x00"sv));
    EXPECT_FALSE(text("\x52\x61\x80"sv));
    EXPECT_TRUE(text("\x62\xD8\x3D\xDE\x00"sv));
    EXPECT_FALSE(text("\x62\x00\x61\x00\x00"sv));
    EXPECT_FALSE(text("\x61\xD8\x3D"sv));
    EXPECT_FALSE(text("\x61\xDE\x00"sv));
    EXPECT_FALSE(text("\x62\xD8\x3D\x00\x61"sv));
    EXPECT_FALSE(text("\x71\x61"sv));
    EXPECT_FALSE(
        parsePropertyList(xmlList("<dict><key>a</key><string>b"s + '\0' + "c</string></dict>"))
            .has_value());
}

TEST_F(PropertyList, BinaryMayHaveAnyOfItsObjectsAtTheTop) {
    const std::vector<std::string> objects = {"\x09", "\xA1" + bigEndian(0, 4), "\xD0"};
    EXPECT_TRUE(isSafeBinaryPropertyList(binaryList(objects, 1)));
    const auto list = parsePropertyList(binaryList(objects, 2));
    ASSERT_TRUE(list.has_value());
    EXPECT_TRUE(list->isDictionary());
    EXPECT_FALSE(isSafeBinaryPropertyList(binaryList(objects, 3)));
}

TEST_F(PropertyList, ListLargerThanAnyRealOneIsRefused) {
    EXPECT_FALSE(parsePropertyList(xmlList("<dict/>") + std::string(2 << 20, ' ')).has_value());
}

TEST_F(PropertyList, SetStringReplacesAndIsWrittenAsXml) {
    for (const std::string& source : {xmlList(kBundleBody), binaryBundle()}) {
        auto list = parsePropertyList(source);
        ASSERT_TRUE(list.has_value());
        list->setString("CFBundleIdentifier", "org.example.\u00FCber<&>");
        EXPECT_EQ(list->stringForKey("CFBundleIdentifier"), "org.example.\u00FCber<&>");
        const std::string xml = list->toXml();
        EXPECT_TRUE(xml.starts_with("<?xml")) << xml;
        const auto again = parsePropertyList(xml);
        ASSERT_TRUE(again.has_value());
        EXPECT_EQ(again->stringForKey("CFBundleIdentifier"), "org.example.\u00FCber<&>");
    }
}

TEST_F(PropertyList, SetStringAddsAMissingKey) {
    auto list = parsePropertyList(xmlList("<dict/>"));
    ASSERT_TRUE(list.has_value());
    list->setString("CFBundleIdentifier", "org.example.client");
    const auto again = parsePropertyList(list->toXml());
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(again->stringForKey("CFBundleIdentifier"), "org.example.client");
}

TEST_F(PropertyList, SetStringKeepsTheOtherKeys) {
    auto list = parsePropertyList(xmlList(kBundleBody));
    ASSERT_TRUE(list.has_value());
    list->setString("CFBundleIdentifier", "other");
    const std::string xml = list->toXml();
    const auto again = parsePropertyList(xml);
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(again->stringForKey("CFBundleName"), "B\u00FCro & <Co>");
    EXPECT_NE(xml.find("<key>levels</key>"), std::string::npos);
    EXPECT_NE(xml.find("<integer>1</integer>"), std::string::npos);
    EXPECT_NE(xml.find("<true/>"), std::string::npos);
}

TEST_F(PropertyList, SetStringIgnoresWhatIsNoUtf8) {
    auto list = parsePropertyList(xmlList(kBundleBody));
    ASSERT_TRUE(list.has_value());
    list->setString("CFBundleIdentifier", "\xC3(");
    EXPECT_EQ(list->stringForKey("CFBundleIdentifier"), "org.example.client");
}

TEST_F(PropertyList, MovedListOwnsWhatWasParsed) {
    auto first = parsePropertyList(xmlList(kBundleBody));
    auto second = parsePropertyList(xmlList("<dict/>"));
    ASSERT_TRUE(first.has_value());
    ASSERT_TRUE(second.has_value());
    *second = std::move(*first);
    const PropertyListDocument third(std::move(*second));
    EXPECT_EQ(third.stringForKey("CFBundleIdentifier"), "org.example.client");
}

}  // namespace
