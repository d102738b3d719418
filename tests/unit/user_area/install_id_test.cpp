#include "launcher/user_area/install_id.h"

#include "base/system_calls.h"
#include "launcher/properties/property_file.h"
#include "platform/environment.h"
#include "platform/text.h"
#include "tests/unit/child_process.h"
#include "tests/unit/user_area/user_area_fixture.h"

#include <sys/time.h>

#include <memory>
#include <vector>

namespace rcp::test {
namespace {

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

class InstallId : public UserAreaTest {
  protected:
    InstallId() { inputs_.traits.eConfig = InstallConfiguration::kUserpb; }

    [[nodiscard]] std::wstring file() const { return folder_.wide("launcher.properties"); }
    void writeFile(const std::string& text) const { folder_.write("launcher.properties", text); }
    [[nodiscard]] std::string fileText() const { return folder_.read("launcher.properties"); }
    std::string make() {
        const std::wstring id = getInstallID(inputs_.traits.eConfig, file(), properties);
        return {id.begin(), id.end()};
    }

    PropertyList properties;
};

TEST_F(InstallId, IsThatOfTheProperties) {
    properties = listOf({{L"rcp.install.id", L"abc"}, {L"rcp.install.id", L"def"}});
    for (const auto configuration : {InstallConfiguration::kUser, InstallConfiguration::kUserpb,
                                     InstallConfiguration::kUnknown}) {
        inputs_.traits.eConfig = configuration;
        EXPECT_EQ(getInstallID(inputs_.traits.eConfig, folder_.wide("missing"), properties),
                  L"abc");
    }
}

TEST_F(InstallId, MissingOneIsFatalUnlessTheConfigurationMakesItsOwn) {
    for (const auto configuration :
         {InstallConfiguration::kService, InstallConfiguration::kLockdown,
          InstallConfiguration::kUser, InstallConfiguration::kSerialMultiuser,
          InstallConfiguration::kUnknown, InstallConfiguration::kMultiuser,
          InstallConfiguration::kMultiuserServiceInit}) {
        inputs_.traits.eConfig = configuration;
        writeFile("a=b\n");
        EXPECT_FATAL(getInstallID(inputs_.traits.eConfig, file(), properties),
                     "ZYPRA0016E: rcp.install.id is required for this configuration!");
        EXPECT_EQ(fileText(), "a=b\n");
    }
}

TEST_F(InstallId, MadeOneIsAppendedToTheFileAndTheList) {
    writeFile("a=b\n");
    const std::string id = make();
    EXPECT_EQ(fileText(), "a=b\nrcp.install.id=" + id + "\n");
    ASSERT_NE(findProperty(Key(L"rcp.install.id"), properties), nullptr);
    EXPECT_EQ(*findProperty(Key(L"rcp.install.id"), properties),
              std::wstring(id.begin(), id.end()));
}

TEST_F(InstallId, MadeOneIsTheTimeInMicroseconds) {
    const auto now = [] {
        timeval time{};
        gettimeofday(&time, nullptr);
        return static_cast<unsigned long>(time.tv_sec) * 1'000'000UL +
               static_cast<unsigned long>(time.tv_usec);
    };
    writeFile("");
    const unsigned long before = now();
    const unsigned long id = std::stoul(make());
    EXPECT_GE(id, before);
    EXPECT_LE(id, now());
}

TEST_F(InstallId, SecondLookUpFindsTheMadeOne) {
    writeFile("a=b\n");
    const std::string id = make();
    EXPECT_EQ(make(), id);
    EXPECT_EQ(countOf(fileText(), "rcp.install.id"), 1U);
}

TEST_F(InstallId, FileWithoutFinalLineFeedGetsOneFirst) {
    writeFile("a=b");
    const std::string id = make();
    EXPECT_EQ(fileText(), "a=b\nrcp.install.id=" + id + "\n");
}

TEST_F(InstallId, FileThatGrowsMeanwhileGetsItsLineFeedAsWell) {
    writeFile("a=bc");
    SystemCalls calls = systemCalls;
    calls.fstat = [](int descriptor, struct stat* status) {
        const int result = fstat(descriptor, status);
        status->st_size -= status->st_size == 4 ? 1 : 0;
        return result;
    };
    const InstalledCalls installed(calls);
    const std::string id = make();
    EXPECT_EQ(fileText(), "a=bc\nrcp.install.id=" + id + "\n");
}

TEST_F(InstallId, EmptyFileGetsTheLineAlone) {
    writeFile("");
    const std::string id = make();
    EXPECT_EQ(fileText(), "rcp.install.id=" + id + "\n");
}

TEST_F(InstallId, OneThatAnotherLauncherAppendedMeanwhileIsTaken) {
    writeFile("a=b\nrcp.install.id=theirs\n");  // not in the list: it was read before
    EXPECT_EQ(make(), "theirs");
    EXPECT_EQ(fileText(), "a=b\nrcp.install.id=theirs\n");
}

TEST_F(InstallId, LaunchersThatStartAtOnceAgreeOnOne) {
    writeFile("a=b");
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int i = 0; i < 8; ++i) {
        children.push_back(std::make_unique<ChildProcess>([&] {
            folder_.write("id" + std::to_string(i), make());
            return 0;
        }));
    }
    for (const auto& child : children) {
        EXPECT_EQ(child->wait(), 0);
    }
    const std::string id = folder_.read("id0");
    EXPECT_EQ(fileText(), "a=b\nrcp.install.id=" + id + "\n");
    for (int i = 1; i < 8; ++i) {
        EXPECT_EQ(folder_.read("id" + std::to_string(i)), id);
    }
}

TEST_F(InstallId, IdIsReadNextTimeEvenWhenTheFileEndsInsideAContinuedEntry) {
    writeFile("z=a\\");
    const std::string id = make();
    PropertyList next;
    getProperties(folder_.wide("launcher.properties"), next);
    ASSERT_NE(findProperty(Key(L"rcp.install.id"), next), nullptr);
    EXPECT_EQ(*findProperty(Key(L"rcp.install.id"), next), toWide(id));
}

TEST_F(InstallId, FileThatCannotBeOpenedIsFatal) {
    EXPECT_FATAL(getInstallID(inputs_.traits.eConfig, folder_.wide("no/such/file"), properties),
                 "ZYPRA0017E: Could not open .*/no/such/file to append rcp.install.id! : No such");
}

TEST_F(InstallId, FileThatCannotBeWrittenToIsFatalAndStaysAsItIs) {
    // Room for a few bytes of the line at most.
    for (const std::size_t size : {std::size_t{29'995}, std::size_t{30'000}, std::size_t{40'000}}) {
        const std::string text =
            "a=" + std::string(1'000, 'b') + "\n" + std::string(size - 1'003, '\n');
        writeFile(text);
        const auto makeLimited = [this] {
            const FileSizeLimit limit(30'000);
            make();
        };
        const Records records(folder_);
        EXPECT_FATAL(makeLimited(),
                     "ZYPRA0018E: Error while writing to .*launcher.properties file.");
        EXPECT_EQ(fileText(), text) << size;
        EXPECT_FALSE(records.has("an incomplete line stays")) << size;
    }
}

TEST_F(InstallId, LineThatCannotBeTakenBackIsReported) {
    writeFile("a=" + std::string(29'990, 'b') + "\n");
    SystemCalls calls = systemCalls;
    calls.ftruncate = [](int, off_t) {
        errno = EIO;
        return -1;
    };
    const InstalledCalls installed(calls);
    const FileSizeLimit limit(30'000);
    const Records records(folder_);
    EXPECT_FATAL(make(), "ZYPRA0018E");
    EXPECT_TRUE(
        records.has("Error: getInstallID: an incomplete line stays in the property file. : "))
        << records.text();
}

class OldInstallId : public UserAreaTest {
  protected:
    void writeOwn(const std::string& text) const {
        folder_.write("ws/.config/rcpinstall.properties", text);
    }
    [[nodiscard]] bool isOld(const std::wstring& currentId) const {
        PropertyList stored;
        getPropertiesIfThere(configuration() + L"/rcpinstall.properties", stored);
        return isOldRcpInstallId(currentId, stored);
    }
};

TEST_F(OldInstallId, NeedsAFile) {
    EXPECT_FALSE(isOld(L"new"));
}

TEST_F(OldInstallId, NeedsAnId) {
    writeOwn("a=b\n");
    EXPECT_FALSE(isOld(L"new"));
    writeOwn("rcp.install.id=\n");
    EXPECT_FALSE(isOld(L"new"));
}

TEST_F(OldInstallId, IsOneThatDiffersAnywhere) {
    writeOwn("rcp.install.id=abc\n");
    EXPECT_FALSE(isOld(L"abc"));
    for (const wchar_t* other : {L"abcd", L"ab", L"ABC", L"", L"xyz"}) {
        EXPECT_TRUE(isOld(other));
    }
}

TEST_F(OldInstallId, IsTheFirstOfTheFile) {
    writeOwn("rcp.install.id=core\nrcp.install.id=abc\n");
    EXPECT_TRUE(isOld(L"abc"));
    EXPECT_FALSE(isOld(L"core"));
}

TEST_F(InstallId, TickCountIsTheTimeOfDayInMicroseconds) {
    const timeval before = getTick();
    const unsigned long tick = std::stoul(getTickString());
    const timeval after = getTick();
    const auto microseconds = [](const timeval& time) {
        return static_cast<unsigned long>(time.tv_sec) * 1'000'000UL +
               static_cast<unsigned long>(time.tv_usec);
    };
    if (before.tv_sec <= after.tv_sec) {  // else somebody set the clock back meanwhile
        EXPECT_GE(tick, microseconds(before));
    }
    EXPECT_EQ(getTickString().find_first_not_of(L"0123456789"), std::wstring::npos);
}

}  // namespace
}  // namespace rcp::test
