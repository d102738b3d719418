// The JVM of a launch, tried: a script in its place tells what it was given.
#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"

#include <gtest/gtest.h>

namespace rcp::inspect::test {
namespace {

class TriedJvm : public StatusTest {
  protected:
    Words variables_;

    void writeJava(const std::string& file, const std::string& commands) const {
        std::filesystem::create_directories((folder_.path() / file).parent_path());
        std::filesystem::remove(folder_.path() / file);
        folder_.write(file, "#!/bin/sh\n" + commands + "\n");
        std::filesystem::permissions(folder_.path() / file, std::filesystem::perms::owner_all);
    }
    [[nodiscard]] std::string check(int status, const Words& arguments = {}) const {
        Words words{seen(INSPECT_PROGRAM), "check", "--install", installation(), "--try-jvm", "--"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        Words variables = environment();
        variables.insert(variables.end(), variables_.begin(), variables_.end());
        Program program(words, variables);
        std::string text = program.rest();
        EXPECT_EQ(program.wait(), status) << text;
        return text;
    }
    static void expectFinding(const std::string& finding, const std::string& text) {
        EXPECT_NE(text.find(finding), std::string::npos) << text;
    }
    static constexpr const char* kJava = "client/jre/bin/java";
};

TEST_F(TriedJvm, WithoutAFolderToRunInIsNotTried) {
    writeJava(kJava, "exit 0");
    variables_ = {"TMPDIR=/nowhere"};
    const std::string text = check(1);
    expectFinding("RI815", text);
    expectFinding("was not started: no folder can be made as /nowhere/", text);
}

TEST_F(TriedJvm, ThatIsAProgramGetsAllThatAPlatformGets) {
    writeJava("java/java", "for one; do [ \"$one\" != -XstartOnFirstThread ] || exit 7; done");
    const std::string java = folder_.narrow("java/java");
    expectFinding("RI810 jvm-refuses: \"" + java + "\" ends with status 7",
                  check(2, {"-vm", java}));
}

TEST_F(TriedJvm, InAFolderIsTheProgramThatLiesThere) {
    writeJava("java/java", "exit 7");
    const std::string folder = folder_.narrow("java");
    expectFinding("RI810 jvm-refuses: \"" + folder + "\" ends with status 7",
                  check(2, {"-vm", folder}));
}

TEST_F(TriedJvm, OfALibraryIsNotTheProgramOfAnotherHome) {
    writeJava("elsewhere/java", "exit 7");
    std::filesystem::remove(folder_.path() / kJava);
    std::filesystem::create_symlink(folder_.path() / "elsewhere/java", folder_.path() / kJava);
    expectFinding("has no program \"java\" of its own", check(1));
}

TEST_F(TriedJvm, MayCloseItsOutputBeforeItEnds) {
    writeJava(kJava, "exec >&- 2>&-; exit 7");
    expectFinding(" ends with status 7", check(2));
}

}  // namespace
}  // namespace rcp::inspect::test
