// Rehearsals that take their time: what somebody in front of a terminal is told, and what an interrupted run
// leaves. Time is taken by the program that lists processes.
#include "tests/inspect/explain_fixture.h"

#include <stdlib.h>

#include <set>
#include <utility>

namespace rcp::inspect::test {
namespace {

namespace files = std::filesystem;

class SlowRehearsal : public ExplainTest {
  protected:
    SlowRehearsal() {
        folder_.write("tmp/keep", "");
        folder_.write("bin/ps", "#!/bin/sh\n: >'" + folder_.narrow("asked") + "'\nwhile [ ! -e '" +
                                    folder_.narrow("answer") + "' ]; do sleep 0.05; done\n");
        files::permissions(folder_.path() / "bin/ps", files::perms::owner_all);
        folder_.write(area(".rcp.lock"), std::to_string(getpid()) + "          ");
    }

    [[nodiscard]] Words slowEnvironment() const {
        Words all = environment();
        for (std::string& variable : all) {
            if (variable.starts_with("PATH=")) {
                variable = "PATH=" + folder_.narrow("bin") + ":" + variable.substr(5);
            }
        }
        all.push_back("TMPDIR=" + folder_.narrow("tmp"));
        return all;
    }
    void answer() const { folder_.write("answer", ""); }
    [[nodiscard]] std::set<std::string> temporaries() const {
        std::set<std::string> names;
        for (const auto& entry : files::directory_iterator(folder_.path() / "tmp")) {
            names.insert(entry.path().filename());
        }
        return names;
    }
    // The folder of a run that was killed while it waited.
    [[nodiscard]] std::string leave() const {
        const std::set<std::string> before = temporaries();
        Program killed(explainWords({}, {}), slowEnvironment());
        waitUntil([&] { return folder_.has("asked"); });
        kill(killed.id(), SIGKILL);
        answer();
        (void)killed.rest();  // until its child has ended too
        (void)killed.wait();
        files::remove(folder_.path() / "asked");
        files::remove(folder_.path() / "answer");
        for (const std::string& name : temporaries()) {
            if (!before.contains(name)) {
                return name;
            }
        }
        ADD_FAILURE() << "nothing is left";
        return {};
    }
    // Two days ago.
    void age(const std::string& name) const {
        const auto then = files::file_time_type::clock::now() - std::chrono::hours(48);
        files::last_write_time(folder_.path() / "tmp" / name, then);
    }
};

TEST_F(SlowRehearsal, TellsWhoeverWaitsAtATerminalForWhat) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
    const int held =
        open(ptsname(terminal), O_RDWR | O_NOCTTY);  // or reading ends between two writers
    Words words = {"/bin/sh", "-c", R"(tty=$1; shift; exec "$@" 2>"$tty")", "sh",
                   ptsname(terminal)};
    const Words explain = explainWords({}, {});
    words.insert(words.end(), explain.begin(), explain.end());
    Program program(words, slowEnvironment());
    std::string told;
    for (char next = 0; !told.ends_with('\n') && read(terminal, &next, 1) == 1;) {
        told += next;
    }
    EXPECT_EQ(told, "rcpinspect: rehearsing the launch ...\r\n");
    answer();
    EXPECT_TRUE(program.rest().starts_with("What a launch would do\n"));
    EXPECT_EQ(program.wait(), 0);
    close(held);
    close(terminal);
}

// Redaction holds the answer until it is whole, and rehearses the launch once more to learn of it.
TEST_F(SlowRehearsal, TellsItInFrontOfARedactedAnswer) {
    folder_.write("bin/ps", "#!/bin/sh\ncd '" + folder_.narrow() +
                                "'\n: >asked.$PPID\n"
                                "while [ ! -e answered.$PPID ]; do sleep 0.05; done\n");
    std::set<std::string> answered;
    const auto answerWhoeverAsksNext = [&] {
        waitUntil([&] {
            for (const auto& entry : files::directory_iterator(folder_.path())) {
                const std::string name = entry.path().filename();
                if (name.starts_with("asked.") && answered.insert(name).second) {
                    folder_.write("answered" + name.substr(name.find('.')), "");
                    return true;
                }
            }
            return false;
        });
    };
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
    int held = open(ptsname(terminal), O_RDWR | O_NOCTTY);
    Words words = {"/bin/sh", "-c", R"(tty=$1; shift; exec "$@" >"$tty" 2>&1)", "sh",
                   ptsname(terminal)};
    const Words explain = explainWords({}, {"--redact"});
    words.insert(words.end(), explain.begin(), explain.end());
    Words variables = slowEnvironment();
    variables.emplace_back("NO_COLOR=1");
    Program program(words, variables);
    const std::string progress = "rcpinspect: rehearsing the launch ...\r\n";
    std::string told;
    for (char next = 0; read(terminal, &next, 1) == 1;) {
        told += next;
        if (told.ends_with(progress)) {
            answerWhoeverAsksNext();
            close(std::exchange(held, -1));  // from now on the program alone has it
        }
    }
    EXPECT_EQ(program.wait(), 0);
    EXPECT_TRUE(told.starts_with(progress + progress + "What a launch would do\r\n")) << told;
    close(terminal);
}

TEST_F(SlowRehearsal, RemovesWhatAnInterruptedRunHasLeftADayAgo) {
    const std::string old = leave();
    const std::string recent = leave();
    const std::string stripped = leave();
    const std::string foreign = leave();
    const std::string open = leave();
    folder_.write("tmp/" + foreign + "/mark", "somebody else's\n");
    files::remove(folder_.path() / "tmp" / stripped / "mark");
    files::permissions(folder_.path() / "tmp" / open, files::perms::all);
    files::create_directory(folder_.path() / "tmp/rcpinspect-abcdef");
    files::create_directory_symlink(folder_.path() / "tmp" / recent,
                                    folder_.path() / "tmp/rcpinspect-ghijkl");
    for (const std::string& name :
         {old + "/mark", old, stripped, foreign + "/mark", open + "/mark"}) {
        age(name);
    }
    std::set<std::string> expected = temporaries();
    expected.erase(old);
    answer();
    Program next(explainWords({}, {}), slowEnvironment());
    (void)next.rest();
    EXPECT_EQ(next.wait(), 0);
    EXPECT_EQ(temporaries(), expected);
}

}  // namespace
}  // namespace rcp::inspect::test
