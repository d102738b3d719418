// The helpers of a locked-down deployment.
#include "launcher/uncalled.h"
#include "tests/support/sandbox.h"
#include "tests/unit/fixture.h"
#include "tests/unit/launch_pieces.h"
#include "tests/unit/paths.h"

#include <sys/stat.h>

#include <fstream>

namespace rcp {
namespace {

namespace fs = std::filesystem;

using test::ScopedVariable;

constexpr char kRequest[] = "/tmp/obx_shutdown";

/// The test's folder is the working directory and the only place where programs are found.
class SessionEnd : public test::LauncherTest {
  protected:
    void SetUp() override {
        folder_.write("killall", "#!/bin/sh\necho \"$@\" > killed\n");
        ASSERT_EQ(chmod(folder_.narrow("killall").c_str(), 0755), 0);
        fs::current_path(folder_.path());
    }
    void TearDown() override { fs::current_path(before_); }
    void deploy(const std::string& library) const {
        fs::copy_file(library, folder_.path() / "lockdown.so");
    }
    ScopedVariable path_{"PATH", folder_.narrow()};
    ScopedVariable answer_{"DEPLOYMENT_REFUSES"};

  private:
    fs::path before_ = fs::current_path();
};

TEST_F(SessionEnd, LogoffIsTheAnswerOfTheDeploymentsLibrary) {
    deploy(test::seen(DEPLOYMENT_LIBRARY));
    EXPECT_EXIT(_exit(logoff() ? 3 : 4), testing::ExitedWithCode(3), "");
    const ScopedVariable refuses("DEPLOYMENT_REFUSES", "1");
    EXPECT_EXIT(_exit(logoff() ? 3 : 4), testing::ExitedWithCode(4), "");
    EXPECT_FALSE(folder_.has("killed"));
}

TEST_F(SessionEnd, WithoutTheLibraryTheDesktopSessionIsEndedAndTheLauncherToo) {
    EXPECT_EXIT(logoff(), testing::ExitedWithCode(1), "");
    EXPECT_EQ(folder_.read("killed"), "gnome-session\n");
}

TEST_F(SessionEnd, LibraryWithoutTheEntryPointIsLikeNone) {
    deploy(test::seen(STANDIN_LIBRARY));
    EXPECT_EXIT(logoff(), testing::ExitedWithCode(1), "");
    EXPECT_EQ(folder_.read("killed"), "gnome-session\n");
}

TEST_F(SessionEnd, MissingKillallIsNoObstacle) {
    fs::remove(folder_.path() / "killall");
    EXPECT_EXIT(logoff(), testing::ExitedWithCode(1), "");
}

/// With a /tmp of its own, for the request file.
class ShutdownRequest : public SessionEnd {
  protected:
    void SetUp() override {
        if (!test::hasPrivateTmp()) {
            GTEST_SKIP() << "the system gives this process no /tmp of its own";
        }
        SessionEnd::SetUp();
        fs::remove_all(kRequest);
    }
    void TearDown() override {
        SessionEnd::TearDown();
        if (test::hasPrivateTmp()) {
            fs::remove_all(kRequest);
        }
    }
    static std::string request() {
        std::ifstream stream(kRequest, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }
    static std::string expected() {
        std::string record(512, '\0');
        record.replace(0, 8, "shutdown");
        record.replace(256, 1, "1");
        return record;
    }
};

TEST_F(ShutdownRequest, IsTwoFieldsOf256BytesAndThenLogoff) {
    deploy(test::seen(DEPLOYMENT_LIBRARY));
    EXPECT_EXIT(_exit(shutdown() ? 3 : 4), testing::ExitedWithCode(3), "");
    EXPECT_EQ(request(), expected());
    const ScopedVariable refuses("DEPLOYMENT_REFUSES", "1");
    EXPECT_EXIT(_exit(shutdown() ? 3 : 4), testing::ExitedWithCode(4), "");
}

TEST_F(ShutdownRequest, OlderRequestIsReplaced) {
    std::ofstream(kRequest) << std::string(2000, 'x');
    EXPECT_EXIT(shutdown(), testing::ExitedWithCode(1), "");
    EXPECT_EQ(request(), expected());
}

TEST_F(ShutdownRequest, FileThatCannotBeWrittenIsFalseWithoutLogoff) {
    fs::create_directory(kRequest);
    EXPECT_FALSE(shutdown());
    EXPECT_FALSE(folder_.has("killed"));
}

TEST_F(ShutdownRequest, PlantedLinkIsNotFollowed) {
    folder_.write("target", "untouched");
    fs::create_symlink(folder_.path() / "target", kRequest);
    EXPECT_FALSE(shutdown());
    EXPECT_EQ(folder_.read("target"), "untouched");
}

}  // namespace
}  // namespace rcp
