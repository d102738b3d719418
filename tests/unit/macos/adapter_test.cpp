// The macOS adapter over the stand-in of Core Foundation: who owns what, and what a failed call leaves.
#include "platform/install_location.h"
#include "platform/platform.h"
#include "tests/standin/macos/calls.h"
#include "tests/unit/fixture.h"
#include "tests/unit/probe.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>

namespace rcp::platform {
namespace {

using test::macos::failCall;
using test::macos::hasFailed;
using test::macos::ownedObjects;

constexpr char kList[] = "<plist><dict><key>a</key><string>b</string></dict></plist>";

class MacAdapter : public testing::Test {
  protected:
    ~MacAdapter() override {
        hasFailed();
        EXPECT_EQ(ownedObjects(), 0U);
    }
};

// Every call fails once; in the end none does.
template <typename Action>
int failuresOf(const Action& action) {
    int failures = 0;
    for (bool failed = true; failed; failures += failed ? 1 : 0) {
        failCall(static_cast<std::size_t>(failures));
        action();
        failed = hasFailed();
        EXPECT_EQ(ownedObjects(), 0U) << "call " << failures;
    }
    return failures;
}

TEST_F(MacAdapter, CallThatFailsLosesNothing) {
    std::string written;
    EXPECT_EQ(failuresOf([&] {
                  auto list = parsePropertyList(kList);
                  if (list) {
                      const std::string before = list->stringForKey("a").value_or("b");
                      EXPECT_EQ(before, "b");
                      list->setString("a", "c");
                      const std::string after = list->stringForKey("a").value_or("b");
                      EXPECT_TRUE(after == "b" || after == "c") << after;
                      written = list->toXml();
                  }
              }),
              12);
    EXPECT_NE(written.find("<string>c</string>"), std::string::npos) << written;
}

TEST_F(MacAdapter, PathOfAFailedCallIsNone) {
    std::optional<std::string> path;
    EXPECT_EQ(failuresOf([&] {
                  path = absolutePath("/a", "b");
                  EXPECT_EQ(path.value_or("/a/b"), "/a/b");
              }),
              5);
    EXPECT_EQ(path, "/a/b");
}

TEST_F(MacAdapter, ComparisonOfAFailedCallIsThatOfTheBytes) {
    EXPECT_EQ(failuresOf([] { EXPECT_TRUE(equalIgnoringCase("a", "a")); }), 2);
    EXPECT_EQ(failuresOf([] { EXPECT_FALSE(equalIgnoringCase("a", "b")); }), 2);
}

TEST_F(MacAdapter, PathThatIsNoUtf8IsNone) {
    EXPECT_EQ(absolutePath("/a", "b\xC3("), std::nullopt);
    EXPECT_EQ(absolutePath("/a\xFF", "b"), std::nullopt);
    EXPECT_EQ(absolutePath("/a", "/b\xFF"), "/b\xFF") << "untouched";
}

// The bytes of another locale are not those that file URLs are made from.
TEST_F(MacAdapter, WorkspaceInALocaleThatIsNotUtf8EndsTheLaunch) {
    const test::TestFolder folder;
    const std::string locale = folder.narrow("latin");
    (void)std::system(
        ("localedef -i en_US -f ISO-8859-1 '" + locale + "' >/dev/null 2>&1").c_str());
    setenv("LOCPATH", folder.narrow().c_str(), 1);
    const std::string before = setlocale(LC_CTYPE, nullptr);
    const bool isThere = setlocale(LC_CTYPE, "latin") != nullptr;
    if (isThere) {
        EXPECT_FATAL(convert_from_relative_location(L"Zo\u00EB"),
                     "ZYPRA0302E: Unable to convert relative workspace path to a full path");
    }
    (void)setlocale(LC_CTYPE, before.c_str());
    unsetenv("LOCPATH");
    if (!isThere) {
        GTEST_SKIP() << "no such locale can be made (package locales)";
    }
}

const test::Probe startedAtTheRoot("started-at-the-root", [](const auto& arguments) {
    test::macos::setExecutablePath(arguments.at(0));
    const int status = chdir("/");
    std::cout << executablePathAsStarted() << std::flush;
    return status;
});

TEST_F(MacAdapter, ProgramStartedFromTheRootHasOneSlash) {
    EXPECT_EQ(test::runProbe("started-at-the-root", {"Applications/x"}).output, "/Applications/x");
    EXPECT_EQ(test::runProbe("started-at-the-root", {"//Applications/x"}).output,
              "//Applications/x");
    const std::string name = "a/" + std::string(3000, 'n');
    EXPECT_EQ(test::runProbe("started-at-the-root", {name}).output, "/" + name);
}

TEST_F(MacAdapter, ProductVersionIsThatOfTheSecondQuestion) {
    const auto answer = [](const std::vector<std::string>& versions) {
        test::macos::setProductVersions(versions);
        return productVersion();
    };
    EXPECT_EQ(answer({"10.15.7", "10.15.7"}), "10.15.7");
    EXPECT_EQ(answer({"10.15.7", "11.0"}), "11.0") << "the buffer is larger than it";
    EXPECT_EQ(answer({"11.0", "10.15.7"}), "") << "the buffer is too small for it";
    EXPECT_EQ(answer({"11.0"}), "");
    EXPECT_EQ(answer({}), "");
}

// What the stand-in itself would not let pass.
TEST(CoreFoundationStandIn, WrongOwnershipEndsTheProcess) {
    const auto text = [] {
        return CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>("a"), 1,
                                       kCFStringEncodingUTF8, 0);
    };
    EXPECT_DEATH(CFRelease(nullptr), "null is no object");
    EXPECT_DEATH(
        {
            const CFStringRef object = text();
            CFRelease(object);
            CFRelease(object);
        },
        "after its release");
    EXPECT_DEATH(
        {
            const CFStringRef object = text();
            CFRelease(object);
            CFStringGetLength(object);
        },
        "after its release");
    EXPECT_DEATH(CFDataGetLength(reinterpret_cast<CFDataRef>(text())), "another kind");
    EXPECT_DEATH(
        {
            text();
            std::exit(0);
        },
        "left at the end");
    int other = 0;
    EXPECT_DEATH(CFRelease(&other), "no such object");
}

TEST(CoreFoundationStandIn, ArgumentThatTheAdapterNeverPassesEndsTheProcess) {
    const auto* const bytes = reinterpret_cast<const UInt8*>(kList);
    const CFIndex size = sizeof kList - 1;
    const auto text = [=](CFStringEncoding encoding, Boolean isExternal) {
        return CFStringCreateWithBytes(nullptr, bytes, size, encoding, isExternal);
    };
    const auto path = [](const char* name, Boolean isDirectory, CFURLRef base) {
        return CFURLCreateFromFileSystemRepresentationRelativeToBase(
            nullptr, reinterpret_cast<const UInt8*>(name), 2, isDirectory, base);
    };
    constexpr CFStringEncoding kLatin = 0x201;
    EXPECT_DEATH(text(kLatin, 0), "UTF-8 is needed");
    EXPECT_DEATH(text(kCFStringEncodingUTF8, 1), "external representation is needed");
    EXPECT_DEATH(CFStringGetMaximumSizeForEncoding(1, kLatin), "UTF-8 is needed");
    EXPECT_DEATH(CFStringGetCString(nullptr, nullptr, 0, kLatin), "UTF-8 is needed");
    EXPECT_DEATH(CFStringCompare(nullptr, nullptr, 0), "without case is needed");
    EXPECT_DEATH(path("a/", 1, nullptr), "base, and no other");
    EXPECT_DEATH(path("/a", 0, nullptr), "a folder as the base");
    EXPECT_DEATH(path("/a", 0, path("/b", 1, nullptr)), "base, and no other");
    EXPECT_DEATH(path("aa", 1, path("/b", 1, nullptr)), "a folder as the base");
    EXPECT_DEATH(CFURLGetFileSystemRepresentation(nullptr, 0, nullptr, 0), "against the base");
    const auto list = [=](CFOptionFlags options) {
        return CFPropertyListCreateFromXMLData(nullptr, CFDataCreate(nullptr, bytes, size), options,
                                               nullptr);
    };
    EXPECT_DEATH(list(2), "cannot be changed is needed");
    EXPECT_DEATH(CFPropertyListCreateData(nullptr, list(0), 200, 0, nullptr), "a list as XML");
    EXPECT_DEATH(CFPropertyListCreateData(nullptr, list(0), 100, 1, nullptr), "without options");
    EXPECT_DEATH(CFDictionaryCreateMutableCopy(nullptr, 1, static_cast<CFDictionaryRef>(list(0))),
                 "without bounds");
    EXPECT_DEATH(CFDictionarySetValue(
                     const_cast<CFMutableDictionaryRef>(static_cast<CFDictionaryRef>(list(0))),
                     text(kCFStringEncodingUTF8, 0), text(kCFStringEncodingUTF8, 0)),
                 "can be changed is needed");
}

TEST(CoreFoundationStandIn, ValueBelongsToItsDictionary) {
    EXPECT_DEATH(
        {
            const auto data =
                CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(kList), sizeof kList - 1);
            const auto list = static_cast<CFDictionaryRef>(
                CFPropertyListCreateFromXMLData(nullptr, data, 0, nullptr));
            const auto key = CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>("a"),
                                                     1, kCFStringEncodingUTF8, 0);
            CFRelease(CFDictionaryGetValue(list, key));
        },
        "does not belong");
}

}  // namespace
}  // namespace rcp::platform
