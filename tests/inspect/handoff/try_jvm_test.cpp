// The JVM of a launch, tried: a script in its place tells what it was given.
#include "base/unique_fd.h"
#include "tests/inspect/paths.h"
#include "tests/inspect/status_fixture.h"
#include "tests/unit/paths.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>

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
        Words variables = variables_;  // in front: the first of a name counts
        for (const std::string& variable : environment()) {
            variables.push_back(variable);
        }
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

TEST_F(TriedJvm, IsFoundAlongThePath) {
    writeJava("java/velmojava", "exit 7");
    variables_ = {"PATH=/usr/bin:/bin:" + folder_.narrow("java")};
    expectFinding(
        "RI810 jvm-refuses: \"" + folder_.narrow("java/velmojava") + "\" ends with status 7",
        check(2, {"-vm", "velmojava"}));
}

TEST_F(TriedJvm, OfWhichOnlyADescriptionIsThereIsNotTried) {
    folder_.write("default.ee", "-Dee.executable=java\n");
    expectFinding("is a description that the launcher library reads",
                  check(1, {"-vm", folder_.narrow("default.ee")}));
}

TEST_F(TriedJvm, OfALibraryReadsNoVariableOfTheProgram) {
    writeJava(kJava, "[ -z \"$JDK_JAVA_OPTIONS\" ] || exit 7");
    writeJava("java/java", "[ -z \"$JDK_JAVA_OPTIONS\" ] || exit 7");
    variables_ = {"JDK_JAVA_OPTIONS=-Xnothing"};
    EXPECT_EQ(check(0).find("RI810"), std::string::npos);
    expectFinding(" ends with status 7", check(2, {"-vm", folder_.narrow("java/java")}));
}

TEST_F(TriedJvm, IsPreloadedWithWhatALaunchPreloads) {
    writeJava(kJava, "case $LD_PRELOAD in */preloaded) exit 8 ;; */a.so) exit 7 ;; esac");
    std::filesystem::create_directories(folder_.path() / "a b");
    for (const char* file : {"a.so", "a b/a.so"}) {
        std::filesystem::copy(seen(STANDIN_LIBRARY), folder_.path() / file);
    }
    const std::string before = folder_.read(kProperties);
    append(kProperties, "library.preload=" + folder_.narrow("a.so") + "\n");
    expectFinding(" ends with status 7", check(2));
    folder_.write(kProperties, before + "library.preload=" + folder_.narrow("a b/a.so") + "\n");
    expectFinding(" ends with status 8", check(2));
}

TEST_F(TriedJvm, ThatASignalEndsIsToldAsThat) {
    writeJava(kJava, "kill -SEGV $$");
    expectFinding("is ended by signal 11", check(2));
}

TEST_F(TriedJvm, TakesWithItWhatItHasStarted) {
    const std::string pipe = folder_.narrow("alive");
    ASSERT_EQ(mkfifo(pipe.c_str(), S_IRWXU), 0);
    // The one that stays holds the pipe open, and not the output.
    writeJava(kJava, "exec 3>\"" + pipe + "\"; sleep 1000 >/dev/null 2>&1 & exit 7");
    const UniqueFd alive(open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    expectFinding(" ends with status 7", check(2));
    pollfd awaited{alive.get(), POLLIN, 0};
    constexpr int kPatience = 60'000;  // milliseconds
    EXPECT_EQ(poll(&awaited, 1, kPatience), 1);
    EXPECT_NE(awaited.revents & POLLHUP, 0);
}

TEST_F(TriedJvm, MayCloseItsOutputBeforeItEnds) {
    writeJava(kJava, "exec >&- 2>&-; exit 7");
    expectFinding(" ends with status 7", check(2));
}

}  // namespace
}  // namespace rcp::inspect::test
