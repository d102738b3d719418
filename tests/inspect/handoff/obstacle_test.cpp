// What keeps the platform from starting is told by all that tell what a launch comes to.
#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"

#include <gtest/gtest.h>

namespace rcp::inspect::test {
namespace {

class Obstacle : public StatusTest {
  protected:
    // A sound installation beside the other one.
    Obstacle() {
        std::filesystem::copy(installation(), folder_.path() / "other",
                              std::filesystem::copy_options::recursive |
                                  std::filesystem::copy_options::copy_symlinks);
        replaceIn("other/rcp/rcplauncher.properties", installation(), folder_.narrow("other"));
    }
    [[nodiscard]] std::string told(Words words) const {
        words.insert(words.begin(), seen(INSPECT_PROGRAM));
        Program program(words, environment());
        const std::string text = program.rest();
        return text + "status " + std::to_string(program.wait()) + "\n";
    }
    void expectObstacle(const std::string& code) const {
        EXPECT_EQ(status()["nextLaunch"]["obstacle"], code);
        for (const char* command : {"status", "explain"}) {
            const std::string text = told({command, "--install", installation()});
            EXPECT_NE(text.find("cannot start the platform: " + code), std::string::npos) << text;
        }
        const std::string doctor = told({"doctor", "--install", installation()});
        EXPECT_NE(doctor.find("the platform cannot be started: " + code), std::string::npos)
            << doctor;
        const std::string other = folder_.narrow("other");
        const std::string diff = told({"diff", "--install", installation(), "--with", other});
        EXPECT_NE(diff.find("cannot start the platform: " + code), std::string::npos) << diff;
    }
    static constexpr const char* kFolder =
        "client/rcp/eclipse/plugins/com.ovr.rcp.base/macosx/x86/";
};

TEST_F(Obstacle, IsNoneOfASoundInstallation) {
    EXPECT_EQ(status()["nextLaunch"]["obstacle"], nullptr);
    const std::string text = told({"status", "--install", installation()});
    EXPECT_NE(text.find("\n              starts the platform\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("cannot start"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("\nstatus 0\n")) << text;
}

TEST_F(Obstacle, IsALauncherLibraryThatCannotBeLoaded) {
    folder_.write(std::string(kFolder) + "eclipse_1615.so", "");
    expectObstacle("RI802");
}

TEST_F(Obstacle, IsAnInstallAreaThatIsNoFolder) {
    append(kProperties, "-Dosgi.install.area=/nowhere\n");
    expectObstacle("RI807");
}

}  // namespace
}  // namespace rcp::inspect::test
