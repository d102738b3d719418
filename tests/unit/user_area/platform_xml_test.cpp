#include "launcher/user_area/platform_xml.h"

#include "tests/unit/user_area/user_area_fixture.h"

namespace rcp::test {
namespace {

constexpr char kFile[] = "org.eclipse.update/platform.xml";

class PlatformXml : public UserAreaTest {
  protected:
    PropertyList properties = listOf({{L"jvm.feature.id", L"com.jvm"},
                                      {L"jvm.feature.version", L"8.0"},
                                      {L"jvm.parent.feature.id", L"com.parent"},
                                      {L"jvm.parent.feature.version", L"9.0"}});

    [[nodiscard]] std::wstring line(const std::wstring& text,
                                    Features features = Features::kFilledIn) const {
        return platformXmlLine(text, properties, features);
    }
    bool create(Features features = Features::kFilledIn) {
        return createPlatformXML(with(properties), base(), features);
    }
};

// --- Lines ---

TEST_F(PlatformXml, EveryPlaceholderOfTheFeatureIsReplaced) {
    EXPECT_EQ(line(L"<a ${jvm.feature.id} ${jvm.feature.version} ${jvm.feature.id} "
                   L"${jvm.feature.version}>"),
              L"<a com.jvm 8.0 com.jvm 8.0>");
}

TEST_F(PlatformXml, EveryPlaceholderOfTheParentFeatureIsReplaced) {
    EXPECT_EQ(line(L"${jvm.parent.feature.version}${jvm.parent.feature.id}"
                   L"${jvm.parent.feature.id}${jvm.parent.feature.version}"),
              L"9.0com.parentcom.parent9.0");
}

TEST_F(PlatformXml, LineOfBothFeaturesGetsBothReplacements) {
    EXPECT_EQ(line(L"${jvm.parent.feature.id} ${jvm.feature.id}"), L"com.parent com.jvm");
}

TEST_F(PlatformXml, VersionOnALineWithoutItsIdStays) {
    EXPECT_EQ(line(L"${jvm.feature.version}"), L"${jvm.feature.version}");
    EXPECT_EQ(line(L"${jvm.feature.id} ${jvm.parent.feature.version}"),
              L"com.jvm ${jvm.parent.feature.version}");
    EXPECT_EQ(line(L"${jvm.parent.feature.id} ${jvm.feature.version}"),
              L"com.parent ${jvm.feature.version}");
}

TEST_F(PlatformXml, OtherPlaceholdersStay) {
    EXPECT_EQ(line(L"<b ${rcp.home} ${prop.x} ${jvm.feature.id"),
              L"<b ${rcp.home} ${prop.x} "
              L"${jvm.feature.id");
}

TEST_F(PlatformXml, InsertedTextIsNotSearchedAgain) {
    properties = listOf({{L"jvm.feature.id", L"<${jvm.feature.id}>"},
                         {L"jvm.feature.version", L"${jvm.feature.version}8"}});
    EXPECT_EQ(line(L"${jvm.feature.id} ${jvm.feature.version}"),
              L"<${jvm.feature.id}> ${jvm.feature.version}8");
}

TEST_F(PlatformXml, InsertedIdThatIsTheParentsPlaceholderIsTheParentsNext) {
    properties = listOf({{L"jvm.feature.id", L"${jvm.parent.feature.id}"},
                         {L"jvm.feature.version", L"8"},
                         {L"jvm.parent.feature.id", L"com.parent"},
                         {L"jvm.parent.feature.version", L"9"}});
    EXPECT_EQ(line(L"${jvm.feature.id}"), L"com.parent");
}

TEST_F(PlatformXml, BareFeatureLinesLoseEverythingElse) {
    EXPECT_EQ(line(L"  <x a=\"${jvm.feature.id}\" b>", Features::kBare), L"<feature>");
    EXPECT_EQ(line(L"${jvm.parent.feature.id} tail", Features::kBare), L"<feature>");
    EXPECT_EQ(line(L"${jvm.feature.id} ${jvm.parent.feature.id}", Features::kBare), L"<feature>");
    EXPECT_EQ(line(L"${jvm.feature.version}", Features::kBare), L"${jvm.feature.version}");
    EXPECT_EQ(line(L"<y>", Features::kBare), L"<y>");
}

TEST_F(PlatformXml, BareFeatureLinesNeedNoProperties) {
    properties = {};
    const Records records(folder_);
    EXPECT_EQ(line(L"${jvm.feature.id} ${jvm.parent.feature.id}", Features::kBare), L"<feature>");
    EXPECT_EQ(records.text(), "");
}

TEST_F(PlatformXml, MissingPropertyLeavesTheLineAndTellsWhichFeature) {
    const std::string text = "Error while copying platform.xml to user specific platform.xml file.";
    for (const wchar_t* only : {L"jvm.feature.id", L"jvm.feature.version"}) {
        properties = listOf({{only, L"x"}});
        const Records records(folder_);
        const std::wstring both = L"${jvm.feature.id} ${jvm.feature.version}";
        EXPECT_EQ(line(both), both);
        EXPECT_EQ(records.text(), "ZYPRA0101E: " + text + "\n");
    }
    for (const wchar_t* only : {L"jvm.parent.feature.id", L"jvm.parent.feature.version"}) {
        properties = listOf({{only, L"x"}});
        const Records records(folder_);
        const std::wstring both = L"${jvm.parent.feature.id} ${jvm.parent.feature.version}";
        EXPECT_EQ(line(both), both);
        EXPECT_EQ(records.text(), "ZYPRA0102E: " + text + "\n");
    }
}

// --- The file ---

TEST_F(PlatformXml, IsTheMasterCopyWithItsPlaceholdersFilledIn) {
    writeCore("platform.xml", "<c>\n<f ${jvm.feature.id}/>\n<é>\n</c>");
    EXPECT_TRUE(create());
    EXPECT_EQ(own(kFile), "<c>\n<f com.jvm/>\n<é>\n</c>\n");
    EXPECT_FALSE(hasTemporaryName());
}

TEST_F(PlatformXml, BareFeaturesReachTheFile) {
    writeCore("platform.xml", "<c>\n<f ${jvm.feature.id}/>\n</c>\n");
    EXPECT_TRUE(create(Features::kBare));
    EXPECT_EQ(own(kFile), "<c>\n<feature>\n</c>\n");
}

TEST_F(PlatformXml, LongLineIsCutIntoLinesInFrontOfItsPlaceholders) {
    writeCore("platform.xml", std::string(2024, 'x') + "${jvm.feature.id}\n");
    create();
    EXPECT_EQ(own(kFile), std::string(2024, 'x') + "\ncom.jvm\n");
}

TEST_F(PlatformXml, ExistingOneIsNeverMadeAgain) {
    folder_.write(std::string("ws/.config/") + kFile, "own");
    writeCore("platform.xml", "core");
    EXPECT_FALSE(create());
    EXPECT_EQ(own(kFile), "own");
}

TEST_F(PlatformXml, ConfigurationWithAnIdOfItsOwnHasNone) {
    inputs_.traits.eConfig = InstallConfiguration::kUserpb;
    folder_.write("base/platform.xml", "core");
    EXPECT_FALSE(create());
    EXPECT_FALSE(hasOwn("org.eclipse.update"));
}

TEST_F(PlatformXml, UnmanagedUpdatePolicyLeavesTheDirectoryEmpty) {
    writeCore("platform.xml", "core");
    properties = listOf({{L"update.policy.managed", L"false"}});
    EXPECT_TRUE(create());
    EXPECT_TRUE(hasOwn("org.eclipse.update"));
    EXPECT_FALSE(hasOwn(kFile));
}

TEST_F(PlatformXml, ValueThatIsNoTextOfTheLocaleCostsItsLineAndIsReported) {
    writeCore("platform.xml", "<a>\n<b id=\"${jvm.feature.id}\">\n</a>\n");
    properties = listOf({{L"jvm.feature.id", {wchar_t{0xD800}}}, {L"jvm.feature.version", L"1"}});
    const Records records(folder_);
    create();
    EXPECT_EQ(own(kFile), "<a>\n</a>\n");
    EXPECT_EQ(records.text(),
              "ZYPRA0103E: Error while copying platform.xml to user specific platform.xml file. (" +
                  folder_.narrow("base/config/user/platform.xml") +
                  ", line 2) : a value filled in is no text of this locale\n");
}

TEST_F(PlatformXml, EveryOtherUpdatePolicyIsAManagedOne) {
    writeCore("platform.xml", "core");
    for (const wchar_t* policy : {L"False", L"FALSE", L"false ", L"", L"true"}) {
        std::filesystem::remove(folder_.path() / "ws/.config" / kFile);
        properties = listOf({{L"update.policy.managed", policy}});
        create();
        EXPECT_EQ(own(kFile), "core\n");
    }
}

TEST_F(PlatformXml, DirectoryMadeNowIsAFirstLaunchEvenWithoutAFile) {
    const Records records(folder_);
    EXPECT_TRUE(create());
    EXPECT_EQ(records.text(), "ZYPRA0104E: Unable to open platform.xml.\"" +
                                  folder_.narrow("base/platform.xml") +
                                  "\" : No such file or directory\n");
    EXPECT_FALSE(hasOwn(kFile));
}

TEST_F(PlatformXml, DirectoryThatCannotBeMadeIsFatal) {
    folder_.write("ws/.config/org.eclipse.update", "a file");
    EXPECT_FATAL(create(), "ZYPRA0039E: Unable to create .*/org.eclipse.update directory.");
}

TEST_F(PlatformXml, FileThatCannotBeOpenedForWritingIsReported) {
    writeCore("platform.xml", "core");
    folder_.write("ws/.config/org.eclipse.update/platform.xml.tmp/in the way", "");
    const Records records(folder_);
    EXPECT_FALSE(create());
    EXPECT_EQ(records.text(), "ZYPRA0139E: Unable to open platform.xml for writing.\"" +
                                  folder_.narrow(std::string("ws/.config/") + kFile) +
                                  "\" : Is a directory\n");
    EXPECT_FALSE(hasOwn(kFile));
}

TEST_F(PlatformXml, FullDiskIsReportedAndLeavesNoFile) {
    writeCore("platform.xml", std::string(40'000, 'x'));
    {
        const Records records(folder_);
        const FileSizeLimit limit(30'000);
        EXPECT_TRUE(create());
        EXPECT_TRUE(
            records.has("ZYPRA0103E: Error while copying platform.xml to user specific "
                        "platform.xml file. : File too large\n"));
    }
    EXPECT_FALSE(hasOwn(kFile));
    EXPECT_FALSE(hasTemporaryName());
}

}  // namespace
}  // namespace rcp::test
