#include "launcher/user_area/user_files.h"

#include "tests/unit/user_area/user_area_fixture.h"

#include <vector>

namespace rcp::test {
namespace {

constexpr char kProps[] = "rcpinstall.properties";

class UserFilesTest : public UserAreaTest {
  protected:
    PropertyList properties = listOf({{L"rcp.install.id", L"abc123"},
                                      {L"rcp.base.location", base()},
                                      {L"install.configuration", L"user"}});

    // The block that these properties give.
    [[nodiscard]] std::string block() const {
        return "rcp.install.id=abc123\nrcp.base.location=" + folder_.narrow("base") +
               "\ninstall.configuration=user\n";
    }
    [[nodiscard]] std::string makeFrom(const std::string& core) const {
        writeCore(kProps, core);
        std::filesystem::remove(folder_.path() / "ws/.config/rcpinstall.properties");
        EXPECT_TRUE(createRCPInstallProps(with(properties), base()));
        EXPECT_FALSE(hasTemporaryName());
        return own(kProps);
    }
    // Less the block.
    [[nodiscard]] std::string keptOf(const std::string& core) const {
        const std::string text = makeFrom(core);
        EXPECT_TRUE(text.ends_with(block())) << text;
        return text.substr(0, text.size() - block().size());
    }
};

// --- The installation's master copies ---

struct CoreFolder {
    InstallConfiguration configuration;
    const wchar_t* folder;
};

TEST_F(UserFilesTest, MasterCopyIsInTheFolderOfTheInstallConfiguration) {
    for (const char* name : {"user/f", "pbuilder/f", "muservice/f", "f"}) {
        folder_.write(std::string("base/config/") + name, "");
    }
    const CoreFolder folders[] = {
        {InstallConfiguration::kMultiuserServiceInit, L"muservice"},
        {InstallConfiguration::kUser, L"user"},
        {InstallConfiguration::kMultiuser, L"user"},
        {InstallConfiguration::kLockdown, L"user"},
        {InstallConfiguration::kUserpb, L"pbuilder"},
        {InstallConfiguration::kService, L""},
        {InstallConfiguration::kSerialMultiuser, L""},
        {InstallConfiguration::kUnknown, L""},
    };
    for (const auto& [configuration, folder] : folders) {
        inputs_.traits.eConfig = configuration;
        EXPECT_EQ(getCoreFileLocation(inputs_.traits.eConfig, base(), L"f"),
                  base() + L"/config/" + folder + L"/f");
    }
}

TEST_F(UserFilesTest, ConfigurationWithoutFolderGivesTwoSlashesInARow) {
    folder_.write("base/config/f", "");
    inputs_.traits.eConfig = InstallConfiguration::kService;
    EXPECT_EQ(getCoreFileLocation(inputs_.traits.eConfig, base(), L"f"), base() + L"/config//f");
}

TEST_F(UserFilesTest, MasterCopyIsInTheBaseOtherwise) {
    folder_.write("base/config/pbuilder/f", "");
    EXPECT_EQ(getCoreFileLocation(inputs_.traits.eConfig, base(), L"f"), base() + L"/f");
    inputs_.traits.eConfig = InstallConfiguration::kUnknown;
    EXPECT_EQ(getCoreFileLocation(inputs_.traits.eConfig, base(), L"f"), base() + L"/f");
}

TEST_F(UserFilesTest, BackslashesOfTheMasterCopysPathAreTurned) {
    folder_.write("base/config/user/f", "");
    const std::wstring turned = folder_.wide() + L"\\base";
    EXPECT_EQ(getCoreFileLocation(inputs_.traits.eConfig, turned, L"f"),
              base() + L"/config/user/f");
    EXPECT_EQ(getCoreFileLocation(inputs_.traits.eConfig, turned, L"g"), base() + L"/g");
}

// --- config.ini ---

TEST_F(UserFilesTest, ConfigIniIsCopiedAsItStands) {
    writeCore("config.ini", "a=${x}\n\n  é\\\nlast");
    EXPECT_TRUE(createConfigIni(inputs_, base()));
    EXPECT_EQ(own("config.ini"), "a=${x}\n\n  é\\\nlast");
    EXPECT_FALSE(hasTemporaryName());
}

TEST_F(UserFilesTest, ExistingConfigIniStaysAndIsNoFirstLaunch) {
    folder_.write("ws/.config/config.ini", "own");
    writeCore("config.ini", "core");
    EXPECT_FALSE(createConfigIni(inputs_, base()));
    EXPECT_EQ(own("config.ini"), "own");
}

TEST_F(UserFilesTest, ConfigIniWithoutMasterCopyIsFatal) {
    EXPECT_FATAL(createConfigIni(inputs_, base()),
                 "ZYPRA0190E: Unable to open source file .*/base/config.ini to be copied");
    EXPECT_FALSE(hasOwn("config.ini"));
}

TEST_F(UserFilesTest, ConfigIniWithoutPlaceIsFatal) {
    writeCore("config.ini", "core");
    inputs_.configuration = folder_.wide("none");
    EXPECT_FATAL(createConfigIni(inputs_, base()),
                 "ZYPRA0191E: Unable to open destination file .*/none/config.ini to be copied to");
}

// --- rcpinstall.properties ---

TEST_F(UserFilesTest, InstallPropertiesAreTheMasterCopysAndTheBlock) {
    EXPECT_EQ(makeFrom("# c\na=1\n"), "# c\na=1\n" + block());
}

TEST_F(UserFilesTest, InstallPropertiesHaveAPathWithItsSlashesTurned) {
    EXPECT_EQ(userFileOf(folder_.wide() + L"\\ws\\.config"),
              configuration() + L"/rcpinstall.properties");
}

TEST_F(UserFilesTest, ExistingInstallPropertiesStayAndAreNoFirstLaunch) {
    folder_.write("ws/.config/rcpinstall.properties", "own");
    writeCore(kProps, "core");
    EXPECT_FALSE(createRCPInstallProps(with(properties), base()));
    EXPECT_EQ(own(kProps), "own");
}

TEST_F(UserFilesTest, InstallPropertiesWithoutMasterCopyAreFatal) {
    EXPECT_FATAL(createRCPInstallProps(with(properties), base()),
                 "ZYPRA0190E: Unable to open source file .*/base/rcpinstall.properties to be");
    EXPECT_FALSE(hasOwn(kProps));
    EXPECT_FALSE(hasTemporaryName());
}

TEST_F(UserFilesTest, EntriesForOtherSystemsAreDropped) {
    EXPECT_EQ(keptOf("a.win32=1\nb.macosx=2\nc.linux=3\nd=4\n"), "b=2\nd=4\n");
}

TEST_F(UserFilesTest, DroppedEntryTakesItsContinuationLinesWithIt) {
    EXPECT_EQ(keptOf("a.win32=1\\\nb=2\\\nc=3\n# between\nd=4\n"), "# between\nd=4\n");
}

TEST_F(UserFilesTest, DroppedEntryEndsBehindAnEvenNumberOfBackslashes) {
    EXPECT_EQ(keptOf("a.win32=1\\\nb=2\\\\\nc=3\n"), "c=3\n");
    EXPECT_EQ(keptOf("a.win32=1\\\\\nb=2\n"), "b=2\n");
}

TEST_F(UserFilesTest, KeptEntryKeepsItsContinuationLinesWhateverTheyLookLike) {
    EXPECT_EQ(keptOf("a=1\\\nb.win32=2\\\n# c\nd=4\n"), "a=1\\\nb.win32=2\\\n# c\nd=4\n");
}

TEST_F(UserFilesTest, CommentsAreKept) {
    EXPECT_EQ(keptOf("# a.win32=1\\\n! b.win32=2\nc.win32=3\n"), "# a.win32=1\\\n! b.win32=2\n");
}

TEST_F(UserFilesTest, CommentDoesNotContinue) {
    EXPECT_EQ(keptOf("# a\\\nb.win32=1\nc=2\n"), "# a\\\nc=2\n");
}

TEST_F(UserFilesTest, LongLineIsCutIntoLines) {
    EXPECT_EQ(keptOf("a=" + std::string(3000, 'x') + "\n"),
              "a=" + std::string(2022, 'x') + "\n" + std::string(978, 'x') + "\n");
}

TEST_F(UserFilesTest, LastLineNeedsNoEndToBeALineOfItsOwn) {
    EXPECT_EQ(keptOf("a=1"), "a=1\n");
    EXPECT_EQ(keptOf(""), "");
}

TEST_F(UserFilesTest, EntryOfTheMasterCopyStandsInFrontOfTheLaunchersValue) {
    EXPECT_EQ(keptOf("rcp.install.id=core\n"), "rcp.install.id=core\n");
}

// --- The block ---

std::string blockOf(const PropertyList& properties) {
    const auto block = userFileBlock(properties);
    return block ? block->lines : "(none)";
}

TEST_F(UserFilesTest, BlockHasItsLinesInOrder) {
    const PropertyList all = listOf({{L"com.ovr.rcp.core.bidi", L"on"},
                                     {L"com.ovr.rcp.core.locale", L"de"},
                                     {L"install.configuration", L"lockdown"},
                                     {L"rcp.base.location", L"/b"},
                                     {L"jvm.location", L"/j"},
                                     {L"rcp.install.id", L"x"}});
    EXPECT_EQ(blockOf(all),
              "rcp.install.id=x\nvm=/j\nrcp.base.location=/b\ninstall.configuration=lockdown\n"
              "com.ovr.rcp.core.locale=de\ncom.ovr.rcp.core.bidi=on\n");
}

TEST_F(UserFilesTest, PathsOfTheBlockHaveSlashesAndAreEscaped) {
    const PropertyList paths = listOf({{L"rcp.install.id", L"i\\:é"},
                                       {L"jvm.location", L"C:\\jre é"},
                                       {L"rcp.base.location", L"\\b=c d"},
                                       {L"com.ovr.rcp.core.locale", L"a\\b:é"},
                                       {L"com.ovr.rcp.core.bidi", L"c\\d=é"}});
    EXPECT_EQ(blockOf(paths),
              "rcp.install.id=i\\:é\nvm=C\\:/jre \\u00e9\nrcp.base.location=/b\\=c d\n"
              "install.configuration=user\ncom.ovr.rcp.core.locale=a\\b:é\n"
              "com.ovr.rcp.core.bidi=c\\d=é\n");
}

TEST_F(UserFilesTest, ValueThatIsNoTextOfTheLocaleCostsItsLineAndIsReported) {
    properties.append({L"com.ovr.rcp.core.locale", {wchar_t{0xD800}}, {}});
    properties.append({L"com.ovr.rcp.core.bidi", L"on", {}});
    const Records records(folder_);
    EXPECT_EQ(makeFrom("a=1\n"), "a=1\n" + block() + "com.ovr.rcp.core.bidi=on\n");
    EXPECT_EQ(records.text(),
              "ZYPRA0015E: Unable to append values to user specific rcpinstall.properties file. "
              "(com.ovr.rcp.core.locale) : its value is no text of this locale\n");
}

TEST_F(UserFilesTest, EmptyJvmLocationGivesNoLine) {
    properties.append({L"jvm.location", L"", {}});
    EXPECT_EQ(makeFrom("a=1\n"), "a=1\n" + block());
}

TEST_F(UserFilesTest, EmptyValuesOfOtherLinesAreWritten) {
    const PropertyList empty = listOf({{L"rcp.install.id", L""},
                                       {L"rcp.base.location", L""},
                                       {L"install.configuration", L""},
                                       {L"com.ovr.rcp.core.locale", L""}});
    EXPECT_EQ(blockOf(empty),
              "rcp.install.id=\nrcp.base.location=\ninstall.configuration=\n"
              "com.ovr.rcp.core.locale=\n");
}

TEST_F(UserFilesTest, MissingInstallConfigurationIsThatOfAUser) {
    const PropertyList two = listOf({{L"rcp.install.id", L"x"}, {L"rcp.base.location", L"/b"}});
    EXPECT_EQ(blockOf(two), "rcp.install.id=x\nrcp.base.location=/b\ninstall.configuration=user\n");
}

TEST_F(UserFilesTest, MissingRequiredValueIsFatalAndLeavesNoFile) {
    writeCore(kProps, "a=1\n");
    for (const wchar_t* only : {L"rcp.install.id", L"rcp.base.location"}) {
        EXPECT_FATAL(createRCPInstallProps(with(listOf({{only, L"x"}})), base()),
                     "ZYPRA0008E: Unable to calculate necessary values for user specific "
                     "rcpinstall.properties file.");
        EXPECT_FALSE(hasOwn(kProps));
        EXPECT_FALSE(hasTemporaryName());
    }
}

TEST_F(UserFilesTest, BlockIsItsOwnFormat) {
    properties.append({L"com.ovr.rcp.core.locale", L"100%% 5% %d", {}});
    EXPECT_EQ(makeFrom("a=%%\n"), "a=%%\n" + block() + "com.ovr.rcp.core.locale=100% 5% %d\n");
}

// --- Failures that the launch survives ---

TEST_F(UserFilesTest, MissingCopyIsReportedAndLeavesTheFile) {
    folder_.write("target", "older");
    const Records records(folder_);
    EXPECT_FALSE(
        fixUserRCPInstallProperties(folder_.wide("none"), folder_.wide("target"), properties));
    EXPECT_TRUE(
        records.has("ZYPRA0074E: Unable to open user specific rcpinstall.properties and temporary "
                    "rcpinstall.properties files. : No such file or directory\n"));
    EXPECT_EQ(folder_.read("target"), "older");
    EXPECT_FALSE(hasTemporaryName());
}

TEST_F(UserFilesTest, MissingPlaceIsReported) {
    folder_.write("copy", "a=1\n");
    const Records records(folder_);
    EXPECT_FALSE(
        fixUserRCPInstallProperties(folder_.wide("copy"), folder_.wide("no/t"), properties));
    EXPECT_TRUE(records.has("ZYPRA0074E"));
}

TEST_F(UserFilesTest, BothPathsMayHaveBackslashes) {
    folder_.write("copy", "a=1\n");
    const std::wstring folder = folder_.wide();
    EXPECT_TRUE(fixUserRCPInstallProperties(folder + L"\\copy", folder + L"\\target", properties));
    EXPECT_EQ(folder_.read("target"), "a=1\n" + block());
}

TEST_F(UserFilesTest, FullDiskIsReportedAndLeavesNoFile) {
    const std::string line = std::string(1000, 'a') + "\n";
    std::string copy;
    for (int i = 0; i < 70; ++i) {  // more than is handed to the system at once
        copy += line;
    }
    folder_.write("copy", copy);
    const auto fixLimited = [this] {
        const Records records(folder_);
        const FileSizeLimit limit(30'000);
        const bool isFixed =
            fixUserRCPInstallProperties(folder_.wide("copy"), folder_.wide("target"), properties);
        const bool both = records.has(
                              "ZYPRA0001E: Error while copying base rcpinstall.properties to user "
                              "specific rcpinstall.properties file. : File too large\n") &&
                          records.has(
                              "ZYPRA0015E: Unable to append values to user specific "
                              "rcpinstall.properties file. : File too large\n");
        _exit(!isFixed && both ? 0 : 1);
    };
    EXPECT_EXIT(fixLimited(), testing::ExitedWithCode(0), "");
    EXPECT_FALSE(folder_.has("target"));
    EXPECT_FALSE(hasTemporaryName());
}

}  // namespace
}  // namespace rcp::test
