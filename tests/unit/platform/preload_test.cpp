// The library preload link.
#include "platform/preload.h"

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"
#include "platform/text.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/records.h"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iostream>

namespace rcp {
namespace {

namespace fs = std::filesystem;

using test::ScopedVariable;

/// The links of a user that exists in this process only.
class Preload : public test::LauncherTest {
  protected:
    void SetUp() override {
        setDebug(true);
        fs::create_directories(place_ + "/a library");
        std::ofstream(library()).flush();
        ASSERT_FALSE(entryIsThere());
    }
    void TearDown() override {
        setDebug(false);
        std::error_code ignored;
        for (const char* qualifier : {"x64", "x86"}) {
            fs::remove(linkPath(qualifier), ignored);
        }
        fs::remove_all(place_ + "/a library", ignored);
    }
    [[nodiscard]] std::string linkPath(const std::string& qualifier = "x64") const {
        return "/tmp/ovr.rcp." + user_ + "." + qualifier + ".lib.so";
    }
    [[nodiscard]] std::string library() const { return place_ + "/a library/lib.so"; }
    [[nodiscard]] bool entryIsThere() const { return fs::exists(fs::symlink_status(linkPath())); }
    void set(const std::wstring& qualifier = L"x64") const {
        setPreload(toWide(library()), qualifier);
    }
    static std::optional<std::string> preloaded() { return test::variable("LD_PRELOAD"); }

    // Where another user sees the library as well; a home directory may be closed to him.
    const std::string place_ = test::hasPrivateTmp() ? "/tmp" : folder_.narrow();
    const std::string user_ = "unit_tests_" + std::to_string(getpid());
    ScopedVariable variable_{"LD_PRELOAD"};
    ScopedVariable name_{"USER", user_};
    test::Records records_{folder_};

    void expectLinkIsUsedByAnotherUser() {
        const std::string expected = linkPath();
        EXPECT_EXIT(
            {
                const bool changed = seteuid(12346) == 0;
                set();
                _exit(changed && preloaded() == expected ? 3 : 4);
            },
            testing::ExitedWithCode(3), "");
    }
};

TEST_F(Preload, PathWithoutABlankIsUsedAsItIsEvenWhenNothingIsThere) {
    const ScopedVariable noUser("USER");
    setenv("LD_PRELOAD", "/old.so", 1);
    setPreload(L"/not/there.so", L"x64");
    EXPECT_EQ(preloaded(), "/not/there.so");
    EXPECT_EQ(records_.text(), "setPreload():setting LD_PRELOAD=/not/there.so\n");
    setPreload(L"name.so", L"x64");
    EXPECT_EQ(preloaded(), "name.so");
}

TEST_F(Preload, ALibraryThatCannotBeReadIsMissedInARecord) {
    SystemCalls failing = systemCalls;
    failing.open = [](const char*, int, mode_t) {
        errno = EINTR;
        return -1;
    };
    {
        const InstalledCalls installed(failing);
        set();
    }
    EXPECT_EQ(preloaded(), std::nullopt);
    EXPECT_EQ(records_.text(), "setPreload():found property: library.preload=" + library() +
                                   "\nError: setPreload: " + library() +
                                   " cannot be read and is not preloaded. : " + strerror(EINTR) +
                                   "\n");
}

TEST_F(Preload, PathWithABlankThatDoesNotExistLeavesTheVariableUntouched) {
    setPreload(L"/not there/lib.so", L"x64");
    EXPECT_EQ(preloaded(), std::nullopt);
    EXPECT_EQ(records_.text(), "setPreload():found property: library.preload=/not there/lib.so\n");
}

TEST_F(Preload, PathWithABlankGetsALinkWithoutOne) {
    set();
    EXPECT_EQ(fs::read_symlink(linkPath()).string(), library());
    EXPECT_EQ(preloaded(), linkPath());
    EXPECT_EQ(records_.text(),
              "setPreload():found property: library.preload=" + library() +
                  "\nsetPreload():library name = lib.so\nsetPreload():linkPath=" + linkPath() +
                  "\nsetPreload(): creating new link ...\n"
                  "setPreload(): symlink() result = 0\n"
                  "setPreload():setting LD_PRELOAD=" +
                  linkPath() + "\nsetPreload():getenv LD_PRELOAD=" + linkPath() + "\n");
}

TEST_F(Preload, SecondRunKeepsTheLink) {
    set();
    struct stat first {};
    ASSERT_EQ(lstat(linkPath().c_str(), &first), 0);
    unsetenv("LD_PRELOAD");
    const std::size_t before = records_.text().size();
    set();
    struct stat second {};
    ASSERT_EQ(lstat(linkPath().c_str(), &second), 0);
    EXPECT_EQ(first.st_ino, second.st_ino);
    EXPECT_EQ(preloaded(), linkPath());
    EXPECT_EQ(records_.text().substr(before),
              "setPreload():found property: library.preload=" + library() +
                  "\nsetPreload():library name = lib.so\nsetPreload():linkPath=" + linkPath() +
                  "\nsetPreload(): link path already exists.\n"
                  "setPreload(): existing link is to: " +
                  library() + "\nsetPreload():setting LD_PRELOAD=" + linkPath() +
                  "\nsetPreload():getenv LD_PRELOAD=" + linkPath() + "\n");
}

TEST_F(Preload, AnotherLibraryReplacesTheLink) {
    folder_.write("another library/lib.so", "");
    setPreload(folder_.wide("another library/lib.so"), L"x64");
    const std::size_t before = records_.text().size();
    set();
    EXPECT_EQ(fs::read_symlink(linkPath()).string(), library());
    const std::string records = records_.text().substr(before);
    EXPECT_NE(records.find(
                  "setPreload(): existing link is to: " + folder_.narrow("another library/lib.so") +
                  "\nsetPreload(): removing existing link ...\n"
                  "setPreload(): creating new link ...\n"
                  "setPreload(): symlink() result = 0\n"),
              std::string::npos)
        << records;
}

TEST_F(Preload, DanglingLinkIsReplacedToo) {
    fs::create_symlink("/not/there any more", linkPath());
    set();
    EXPECT_EQ(fs::read_symlink(linkPath()).string(), library());
    EXPECT_EQ(preloaded(), linkPath());
}

TEST_F(Preload, EveryQualifierHasALinkOfItsOwn) {
    set(L"x64");
    set(L"x86");
    EXPECT_EQ(preloaded(), linkPath("x86"));
    EXPECT_TRUE(fs::is_symlink(linkPath("x64")));
    EXPECT_TRUE(fs::is_symlink(linkPath("x86")));
}

TEST_F(Preload, EveryUserHasALinkOfHisOwn) {
    set();
    const std::string first = *preloaded();
    const ScopedVariable other("USER", user_ + "_2");
    set();
    EXPECT_EQ(preloaded(), "/tmp/ovr.rcp." + user_ + "_2.x64.lib.so");
    EXPECT_NE(preloaded(), first);
    fs::remove(*preloaded());
}

TEST_F(Preload, LinkThatCannotBeMadeIsOnlyTraced) {
    // A name that is longer than the file system allows.
    const std::wstring qualifier(300, L'q');
    set(qualifier);
    EXPECT_TRUE(records_.has("setPreload(): symlink() result = -1\n"));
    EXPECT_EQ(preloaded(), "/tmp/ovr.rcp." + user_ + "." + std::string(300, 'q') + ".lib.so");
}

TEST_F(Preload, LinkOfAnotherUserThatCannotBeRemovedIsNeverPreloaded) {
    if (geteuid() != 0 || !test::hasPrivateTmp()) {
        GTEST_SKIP() << "only root can play another user, in a /tmp of its own";
    }
    ASSERT_EQ(chmod("/tmp", 01777), 0);
    fs::create_symlink(library(), linkPath());
    ASSERT_EQ(lchown(linkPath().c_str(), 12345, 12345), 0);
    setDebug(false);
    const auto setAsAnotherUser = [this] {
        setenv("LD_PRELOAD", "/old.so", 1);
        const bool changed = seteuid(12346) == 0;
        set();
        const bool isOld = preloaded() == "/old.so";
        std::cerr << records_.text();
        _exit(changed && isOld ? 3 : 4);
    };
    EXPECT_EXIT(setAsAnotherUser(), testing::ExitedWithCode(3),
                "^Error: setPreload: /tmp/ovr.rcp.*lib.so belongs to another user and is not "
                "preloaded.\n$");
}

TEST_F(Preload, EntryThatAnotherUserMakesMeanwhileIsNeverPreloaded) {
    SystemCalls calls = systemCalls;
    calls.symlink = [](const char* target, const char* path) {
        errno = symlink(target, path) == 0 ? EEXIST : errno;
        return -1;
    };
    calls.lstat = [](const char* path, struct stat* status) {
        const int result = lstat(path, status);
        status->st_uid = geteuid() + 1;
        return result;
    };
    const InstalledCalls installed(calls);
    set();
    EXPECT_EQ(preloaded(), std::nullopt);
    EXPECT_TRUE(records_.has("Error: setPreload: " + linkPath() +
                             " belongs to another user and is not preloaded.\n"))
        << records_.text();
}

TEST_F(Preload, LinkOfAnotherUserThatCanBeRemovedIsReplaced) {
    if (geteuid() != 0 || !test::hasPrivateTmp()) {
        GTEST_SKIP() << "only root can play another user, in a /tmp of its own";
    }
    fs::create_symlink(library(), linkPath());
    ASSERT_EQ(lchown(linkPath().c_str(), 12345, 12345), 0);
    set();
    EXPECT_EQ(preloaded(), linkPath());
    struct stat status {};
    ASSERT_EQ(lstat(linkPath().c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 0U);
}

TEST_F(Preload, OwnLinkThatCannotBeRemovedIsUsedAsItIs) {
    if (geteuid() != 0 || !test::hasPrivateTmp()) {
        GTEST_SKIP() << "only root can take the rights to /tmp away";
    }
    ASSERT_EQ(chmod("/tmp", 0755), 0);
    fs::create_symlink("/another library/lib.so", linkPath());
    ASSERT_EQ(lchown(linkPath().c_str(), 12346, 12346), 0);
    expectLinkIsUsedByAnotherUser();
    EXPECT_EQ(fs::read_symlink(linkPath()).string(), "/another library/lib.so");
    ASSERT_EQ(chmod("/tmp", 01777), 0);
}

TEST_F(Preload, LinkOfRootIsTrusted) {
    if (geteuid() != 0 || !test::hasPrivateTmp()) {
        GTEST_SKIP() << "only root can make it, in a /tmp of its own";
    }
    ASSERT_EQ(chmod("/tmp", 01777), 0);
    fs::create_symlink(library(), linkPath());
    expectLinkIsUsedByAnotherUser();
}

TEST_F(Preload, PathWithoutASlashEndsTheLaunch) {
    const fs::path before = fs::current_path();
    folder_.write("a lib.so", "");
    fs::current_path(folder_.path());
    EXPECT_FATAL(setPreload(L"a lib.so", L"x64"),
                 "ZYPRA0189E: Couldn't find filename for library.preload property");
    fs::current_path(before);
}

TEST_F(Preload, MissingUserNameEndsTheLaunch) {
    const ScopedVariable noUser("USER");
    EXPECT_FATAL(set(), "ZYPRA0006E: Couldn't find the user name!");
}

TEST_F(Preload, UserNameThatLeadsElsewhereEndsTheLaunch) {
    const ScopedVariable user("USER", "../ann");
    EXPECT_FATAL(set(), "ZYPRA0006E: Couldn't find the user name!");
}

TEST_F(Preload, TargetOfALinkOfAnyLengthIsRead) {
    for (const std::size_t length : {1U, 1023U, 1024U, 1025U, 3000U}) {
        const std::string target(length, 't');
        const std::string link = folder_.narrow("link");
        ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
        EXPECT_EQ(readsymln(link), target);
        fs::remove(link);
    }
}

TEST_F(Preload, TargetOfWhatIsNoLinkEndsTheLaunch) {
    EXPECT_FATAL((void)readsymln(folder_.narrow("missing")),
                 "ZYPRA0184E: Getting command path failed! errno = 2 : No such file");
    EXPECT_FATAL((void)readsymln(folder_.narrow()),
                 "ZYPRA0184E: Getting command path failed! errno = 22 : Invalid argument");
}

}  // namespace
}  // namespace rcp
