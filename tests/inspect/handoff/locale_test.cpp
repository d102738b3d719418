// What is said of paths that the JVM's locale cannot express.
#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"

#include <gtest/gtest.h>

#include <utility>

namespace rcp::inspect::test {
namespace {

class LocaleTest : public StatusTest {
  protected:
    std::string locale_ = "C";

    [[nodiscard]] std::string told(const std::string& command, const std::string& workspace) const {
        Words variables = environment();
        variables.push_back("LC_ALL=" + locale_);
        Program program({seen(INSPECT_PROGRAM), command, "--install", installation(), "--", "-data",
                         folder_.narrow("home/" + workspace)},
                        variables);
        const std::string text = program.rest();
        return text + "status " + std::to_string(program.wait()) + "\n";
    }
    [[nodiscard]] bool tells(const std::string& command, const std::string& workspace) const {
        return told(command, workspace).find("RI814") != std::string::npos;
    }
    void expectSound(const std::string& workspace) const {
        constexpr std::pair<const char*, const char*> kSaid[] = {
            {"check", ": nothing found\n"}, {"explain", "it becomes /"}, {"doctor", "✓ locale "}};
        for (const auto& [command, said] : kSaid) {
            const std::string text = told(command, workspace);
            EXPECT_NE(text.find(said), std::string::npos) << text;
            EXPECT_EQ(text.find("RI814"), std::string::npos) << text;
            EXPECT_TRUE(text.ends_with("\nstatus 0\n")) << text;
        }
    }
};

#ifdef __linux__

TEST_F(LocaleTest, ThatCannotExpressTheWorkspaceIsFound) {
    for (const char* command : {"check", "explain", "doctor"}) {
        EXPECT_TRUE(tells(command, "wörk")) << told(command, "wörk");
    }
    EXPECT_NE(told("explain", "wörk").find("cannot start the platform: RI814"), std::string::npos);
}

TEST_F(LocaleTest, ThatIsNotInstalledIsWhatProgramsBeginWith) {
    locale_ = "C.UTF-8";
    append(kProperties, "env.set.LC_ALL=xx_YY.UTF-8\n");
    EXPECT_NE(told("check", "wörk")
                  .find("the JVM gets LC_ALL=xx_YY.UTF-8, which is not installed, whose characters "
                        "ANSI_X3.4-1968 cannot express"),
              std::string::npos)
        << told("check", "wörk");
}

TEST_F(LocaleTest, HasToExpressPathsAlone) {
    append(kProperties, "vmarg.title=-Dtitle=Käse/Brot\nvmarg.page=-Dpage=http://host/Käse\n");
    expectSound("work");
    const std::string before = folder_.read(kProperties);
    for (const char* path : {"-Dfile=file:/Käse", "-Dfile=/Käse", "-javaagent:lib/Käse.jar"}) {
        folder_.write(kProperties, before + "vmarg.file=" + path + "\n");
        EXPECT_TRUE(tells("check", "work")) << told("check", "work");
    }
}

TEST_F(LocaleTest, IsThatOfTheJvmAndNotItsOwn) {
    EXPECT_NE(
        told("doctor", "work").find("✓ locale                  characters are ANSI_X3.4-1968"),
        std::string::npos)
        << told("doctor", "work");
    append(kProperties, "env.set.LC_ALL=C.UTF-8\n");
    expectSound("wörk");
}

#endif

TEST_F(LocaleTest, ThatExpressesAllPathsIsSound) {
    expectSound("work");
    locale_ = "C.UTF-8";
    expectSound("wörk");
}

}  // namespace
}  // namespace rcp::inspect::test
