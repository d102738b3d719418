#include "launcher/properties/data_path.h"

#include "platform/text.h"
#include "tests/unit/launch_pieces.h"

namespace rcp {
namespace {

namespace fs = std::filesystem;

constexpr wchar_t kNew[] = L"${env.HOME}/Library/Application Support/ZUN Velmo Data/ws";
constexpr wchar_t kOld[] = L"${env.HOME}/Library/Application Support/OVR Velmo Data/ws";

/// The test's folder is the user's home directory.
class DataPath : public test::LauncherTest {
  protected:
    void make(const std::string& name, const std::string& where = "Library/Application Support") {
        fs::create_directories(folder_.path() / where / name);
    }
    static std::wstring path(const std::wstring& value) { return getDataPath(L"rcp.data", value); }
    test::ScopedVariable home_{"HOME", folder_.narrow()};
};

TEST_F(DataPath, NewUserGetsTheNewFolder) {
    EXPECT_EQ(path(kNew), kNew);
}

TEST_F(DataPath, UserOfTheEarlierFolderKeepsIt) {
    make("OVR Velmo Data");
    EXPECT_EQ(path(kNew), kOld);
    EXPECT_EQ(getDataPath(L"anything", kNew), kOld) << "the key is not looked at";
}

TEST_F(DataPath, NewFolderWinsOnceItIsThere) {
    make("OVR Velmo Data");
    make("ZUN Velmo Data");
    EXPECT_EQ(path(kNew), kNew);
}

TEST_F(DataPath, OnlyDirectoriesCount) {
    make("");
    folder_.write("Library/Application Support/OVR Velmo Data", "a file");
    EXPECT_EQ(path(kNew), kNew);
    fs::remove(folder_.path() / "Library/Application Support/OVR Velmo Data");
    make("OVR Velmo Data");
    folder_.write("Library/Application Support/ZUN Velmo Data", "a file");
    EXPECT_EQ(path(kNew), kOld);
}

TEST_F(DataPath, ValueOf54CharactersIsNeverRepairedAndOneOf55Is) {
    make("OVR Velmo Data");
    const std::wstring longest = std::wstring(kNew).substr(0, 54);
    ASSERT_TRUE(longest.ends_with(L"ZUN Velmo Data"));
    EXPECT_EQ(path(longest), longest);
    EXPECT_EQ(path(longest + L"/"), std::wstring(kOld).substr(0, 54) + L"/");
    EXPECT_EQ(path(L""), L"");
}

TEST_F(DataPath, OtherFolderNamesStay) {
    make("OVR Velmo Data");
    for (const wchar_t* value : {L"${env.HOME}/Library/Application Support/ZUN Velmo data/ws",
                                 L"${env.HOME}/Library/Application Support /ZUN Velmo Data/ws",
                                 L"${env.HOM}/Library/Application Support/ZUN Velmo Data/ws and"}) {
        EXPECT_EQ(path(value), value);
    }
}

TEST_F(DataPath, MiddleIsTakenFromTheValueAndTheLeadCountsOnlyByItsLength) {
    make("OVR Velmo Data", "Bibliothek/Programmdaten \u00FCber");
    const std::wstring middle = L"/Bibliothek/Programmdaten \u00FC";
    const std::wstring value = L"12345678901" + middle + L"ber/ZUN Velmo Data/x";
    ASSERT_EQ(value.find(L"ZUN"), 42U);
    EXPECT_EQ(path(value), value) << "not at its place";
    make("OVR Velmo Data", "Bibliothek/Programmdaten \u00FCb");
    const std::wstring right = L"12345678901" + middle + L"b/ZUN Velmo Data/x";
    ASSERT_EQ(right.find(L"ZUN"), 40U);
    EXPECT_EQ(path(right), L"12345678901" + middle + L"b/OVR Velmo Data/x");
}

}  // namespace
}  // namespace rcp
