#include "platform/bundle_metadata.h"

#include "base/system_calls.h"
#include "platform/text.h"
#include "tests/unit/records.h"

#include <errno.h>
#include <locale.h>
#include <sys/stat.h>

namespace rcp {
namespace {

class BundleMetadata : public test::LauncherTest {
  protected:
    static std::string list(const std::string& body) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + body +
               "</plist>";
    }
    static std::string withIdentifier(const std::string& identifier) {
        return list("<dict><key>CFBundleIdentifier</key><string>" + identifier +
                    "</string><key>CFBundleName</key><string>Velmo \u00FC</string></dict>");
    }
    void update(const std::string& content, const std::wstring& identifier) const {
        folder_.write("Info.plist", content);
        updateInfoPlist(folder_.wide("Info.plist"), identifier);
    }
    [[nodiscard]] std::string content() const { return folder_.read("Info.plist"); }
    [[nodiscard]] std::optional<std::string> value(const std::string& key) const {
        const auto parsed = createPropertiesListFromFile(folder_.wide("Info.plist"));
        return parsed ? parsed->stringForKey(key) : std::nullopt;
    }
    void isUntouched(const std::string& before, const std::wstring& identifier) const {
        folder_.write("Info.plist", before);
        struct stat first {};
        struct stat second {};
        stat(folder_.narrow("Info.plist").c_str(), &first);
        updateInfoPlist(folder_.wide("Info.plist"), identifier);
        stat(folder_.narrow("Info.plist").c_str(), &second);
        EXPECT_EQ(content(), before);
        EXPECT_EQ(first.st_ino, second.st_ino) << "it is still the same file";
    }
};

TEST_F(BundleMetadata, DifferentIdentifierIsReplacedAndTheRestStays) {
    update(withIdentifier("org.example.client"), L"org.example.\u00FCber");
    EXPECT_EQ(value("CFBundleIdentifier"), "org.example.\u00FCber");
    EXPECT_EQ(value("CFBundleName"), "Velmo \u00FC");
    EXPECT_TRUE(content().starts_with("<?xml"));
    EXPECT_FALSE(folder_.has("Info.plist.tmp"));
}

TEST_F(BundleMetadata, MissingIdentifierIsAdded) {
    update(list("<dict/>"), L"org.example");
    EXPECT_EQ(value("CFBundleIdentifier"), "org.example");
}

TEST_F(BundleMetadata, IdentifierOfAnotherKindIsReplaced) {
    update(list("<dict><key>CFBundleIdentifier</key><true/></dict>"), L"org.example");
    EXPECT_EQ(value("CFBundleIdentifier"), "org.example");
}

TEST_F(BundleMetadata, SameIdentifierInAnyLetterCaseLeavesTheFileUntouched) {
    isUntouched(withIdentifier("org.example.client"), L"org.example.client");
    isUntouched(withIdentifier("org.example.client"), L"ORG.Example.CLIENT");
    isUntouched(withIdentifier("org.\u00DCber"), L"ORG.\u00FCBER");
}

TEST_F(BundleMetadata, WhatIsNoDictionaryIsLeftAlone) {
    const test::Records records(folder_);
    isUntouched(list("<array><string>CFBundleIdentifier</string></array>"), L"org.example");
    EXPECT_EQ(records.text(), "");
}

TEST_F(BundleMetadata, WhatIsNoListThatCanBeReadIsLeftAloneAndReported) {
    for (const std::string& content :
         {std::string("no property list"), std::string(), std::string(5 << 20, 'x'),
          list("<dict><key>n</key><integer> 1</integer></dict>")}) {
        const test::Records records(folder_);
        isUntouched(content, L"org.example");
        EXPECT_EQ(records.text(), "Error: updateInfoPlist: " + folder_.narrow("Info.plist") +
                                      " is no property list that can be read.\n");
    }
}

TEST_F(BundleMetadata, FolderInThePlaceOfTheListIsReported) {
    const test::Records records(folder_);
    folder_.write("Info.plist/file", "");
    updateInfoPlist(folder_.wide("Info.plist"), L"org.example");
    EXPECT_TRUE(records.has("Info.plist is no property list that can be read. : Is a directory\n"));
}

TEST_F(BundleMetadata, FileThatMayNotBeReadIsReported) {
    const test::Records records(folder_);
    SystemCalls calls = systemCalls;
    calls.open = [](const char*, int, mode_t) {
        errno = EACCES;
        return -1;
    };
    const InstalledCalls installed(calls);
    isUntouched(withIdentifier("a"), L"b");
    EXPECT_EQ(records.text(), "Error: updateInfoPlist: " + folder_.narrow("Info.plist") +
                                  " is no property list that can be read. : Permission denied\n");
}

TEST_F(BundleMetadata, FailedReadIsReported) {
    const test::Records records(folder_);
    SystemCalls calls = systemCalls;
    calls.read = [](int, void*, std::size_t) {
        errno = EIO;
        return ssize_t{-1};
    };
    const InstalledCalls installed(calls);
    isUntouched(withIdentifier("a"), L"b");
    EXPECT_EQ(records.text(), "Error: updateInfoPlist: " + folder_.narrow("Info.plist") +
                                  " is no property list that can be read. : Input/output error\n");
    EXPECT_FALSE(createPropertiesListFromFile(folder_.wide("Info.plist")).has_value());
}

TEST_F(BundleMetadata, ListHasABoundAndIsNotCutThere) {
    std::string largest = withIdentifier("a");
    largest.resize(platform::kMaxPropertyListBytes, '\n');
    folder_.write("Info.plist", largest);
    EXPECT_EQ(value("CFBundleIdentifier"), "a");
    folder_.write("Info.plist", largest + "\n");
    EXPECT_EQ(value("CFBundleIdentifier"), std::nullopt);
}

TEST_F(BundleMetadata, MissingFileIsNotMade) {
    const test::Records records(folder_);
    updateInfoPlist(folder_.wide("Info.plist"), L"org.example");
    EXPECT_FALSE(folder_.has("Info.plist"));
    EXPECT_EQ(records.text(), "");
    EXPECT_FALSE(createPropertiesListFromFile(folder_.wide("Info.plist")).has_value());
    EXPECT_FALSE(createPropertiesListFromFile(folder_.wide()).has_value());
}

TEST_F(BundleMetadata, IdentifierThatIsNoTextLeavesTheFileUntouched) {
    isUntouched(withIdentifier("org.example"), std::wstring(1, static_cast<wchar_t>(0xD800)));
}

TEST_F(BundleMetadata, IdentifierThatCannotBeSetIsReported) {
    for (const int character : {0xD800, 0x01, 0x1F, 0xFFFE}) {
        const test::Records records(folder_);
        folder_.write("Info.plist", withIdentifier("a"));
        updateInfoPlist(folder_.wide("Info.plist"),
                        std::wstring(1, static_cast<wchar_t>(character)));
        EXPECT_TRUE(records.has("Error: updateInfoPlist: the identifier cannot be set in " +
                                folder_.narrow("Info.plist") + ".\n"))
            << character;
        EXPECT_EQ(folder_.read("Info.plist"), withIdentifier("a"));
    }
}

// Every element gets a line of its own.
TEST_F(BundleMetadata, ListThatIsTooLargeOnceItIsWrittenIsReported) {
    std::string elements;
    while (elements.size() < platform::kMaxPropertyListBytes - 1000) {
        elements += "<true/>";
    }
    const test::Records records(folder_);
    isUntouched(list("<dict><key>n</key><array>" + elements + "</array></dict>"), L"org.example");
    EXPECT_EQ(records.text(), "Error: updateInfoPlist: the identifier cannot be set in " +
                                  folder_.narrow("Info.plist") + ".\n");
}

TEST_F(BundleMetadata, EmptyIdentifierIsSet) {
    update(withIdentifier("org.example"), L"");
    EXPECT_EQ(value("CFBundleIdentifier"), "");
    isUntouched(content(), L"");
}

TEST_F(BundleMetadata, LocaleOfTheProcessDoesNotMatter) {
    const std::string before = setlocale(LC_CTYPE, nullptr);
    ASSERT_NE(setlocale(LC_CTYPE, "C"), nullptr);
    isUntouched(withIdentifier("org.\u00DCber"), L"org.\u00DCber");
    isUntouched(withIdentifier("org.\u00DCber"), L"ORG.\u00FCBER");
    update(withIdentifier("org.example"), L"org.\u00FC\u65E5\U0001F600");
    EXPECT_EQ(value("CFBundleIdentifier"), "org.\u00FC\u65E5\U0001F600");
    (void)setlocale(LC_CTYPE, before.c_str());
}

TEST_F(BundleMetadata, RewrittenFileKeepsItsPermissions) {
    folder_.write("Info.plist", withIdentifier("a"));
    ASSERT_EQ(chmod(folder_.narrow("Info.plist").c_str(), 0604), 0);
    updateInfoPlist(folder_.wide("Info.plist"), L"b");
    struct stat status {};
    ASSERT_EQ(stat(folder_.narrow("Info.plist").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0604U);
    EXPECT_EQ(value("CFBundleIdentifier"), "b");
}

TEST_F(BundleMetadata, FailedWriteIsReported) {
    const test::Records records(folder_);
    // Something in the place of the temporary file.
    folder_.write("Info.plist.tmp/file", "");
    isUntouched(withIdentifier("a"), L"b");
    EXPECT_EQ(records.text(), "Error: updateInfoPlist: " + folder_.narrow("Info.plist") +
                                  " cannot be written : Is a directory\n");
}

}  // namespace
}  // namespace rcp
