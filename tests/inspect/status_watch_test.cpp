#include "tests/inspect/status_fixture.h"

namespace rcp::inspect::test {
namespace {

class WatchedStatus : public StatusTest {
  protected:
    std::unique_ptr<Program> watch(const Words& options) {
        Words variables = environment();
        variables.push_back("TMPDIR=" + folder_.narrow("temporary"));
        std::filesystem::create_directory(temporary());
        return std::make_unique<Program>(words({}, options), variables);
    }
    // Every rehearsal has a folder there for as long as it takes.
    [[nodiscard]] std::filesystem::path temporary() const { return folder_.path() / "temporary"; }
    [[nodiscard]] auto timeOfLastRehearsal() const {
        waitUntil([&] { return std::filesystem::is_empty(temporary()); });
        return std::filesystem::last_write_time(temporary());
    }
};

TEST_F(WatchedStatus, EveryChangeIsOneJsonObjectALine) {
    const std::unique_ptr<Program> watching = watch({"--watch", "--format", "json"});
    EXPECT_EQ(Json::parse(watching->line())["lock"]["content"], "missing");
    folder_.write(area(".rcp.lock"), "nonsense");
    EXPECT_EQ(Json::parse(watching->line())["lock"]["content"], "other");
    folder_.write(area(".rcp.lock"), "  ");
    EXPECT_EQ(Json::parse(watching->line())["lock"]["content"], "nothing");
}

TEST_F(WatchedStatus, APlatformIsSeenToComeAndGo) {
    const std::unique_ptr<Program> watching = watch({"--watch", "--format", "json"});
    EXPECT_EQ(Json::parse(watching->line())["nextLaunch"]["role"], "main");
    std::unique_ptr<Program> platform;
    startPlatform(platform);
    const auto roleBecomes = [&](const char* role) {
        for (Json state; state["nextLaunch"]["role"] != role;) {
            const std::string line = watching->line();
            ASSERT_FALSE(line.empty());
            state = Json::parse(line);
            if (!state.contains("nextLaunch")) {
                FAIL() << line;
            }
        }
    };
    roleBecomes("daemon");
    std::filesystem::remove(folder_.path() / "stay");
    platform->wait();
    roleBecomes("main");
}

TEST_F(WatchedStatus, ALaunchIsRehearsedOnlyWhenSomethingHasChangedForIt) {
    ASSERT_EQ(launch(), 0);
    const std::unique_ptr<Program> watching = watch({"--watch", "--format", "json"});
    (void)watching->line();
    const auto first = timeOfLastRehearsal();
    waitUntil([&] { return timeOfLastRehearsal() != first; });  // now it knows what to look at
    const auto last = timeOfLastRehearsal();

    folder_.write(area("logs/rcplauncher_1.log"), "ZYPRA0304I: We are main process\n");
    EXPECT_EQ(Json::parse(watching->line())["lastLaunch"]["outcome"], "unfinished");
    EXPECT_EQ(timeOfLastRehearsal(), last);

    replaceIn(kProperties, "rcp.install.id=sample", "rcp.install.id=newer");
    EXPECT_EQ(Json::parse(watching->line())["installId"]["isOld"], true);
    EXPECT_NE(timeOfLastRehearsal(), last);
}

TEST_F(WatchedStatus, AnInterruptionEndsItWithSuccess) {
    const std::unique_ptr<Program> watching = watch({"--watch"});
    EXPECT_TRUE(watching->line().starts_with("installation"));
    while (!watching->line().starts_with("last launch")) {
    }
    kill(watching->id(), SIGINT);
    // Nothing has changed, so nothing more was said.
    EXPECT_EQ(watching->rest(), "");
    EXPECT_EQ(watching->wait(), 0);
}

}  // namespace
}  // namespace rcp::inspect::test
