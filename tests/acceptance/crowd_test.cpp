// Many launchers in one workspace at the same moment: one of them becomes the platform, all others
// its daemons. All platforms stay until every launcher has handed over, so that two main ones could
// not go unseen.
#include "checks.h"

#include <sys/stat.h>
#include <time.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>
#include <set>
#include <thread>

namespace acceptance {

namespace {

using namespace std::chrono_literals;

constexpr int kLaunchers = 50;
constexpr int kKills = 20;

std::vector<StayingLaunch> startCrowd(const Installation& velmo) {
    std::vector<StayingLaunch> crowd;
    crowd.reserve(kLaunchers);
    for (int i = 0; i < kLaunchers; ++i) {
        crowd.push_back(velmo.startStaying());
    }
    return crowd;
}

void expectOneMainPlatform(const char* inProcess) {
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", inProcess);
    const auto begin = std::chrono::steady_clock::now();
    std::vector<StayingLaunch> crowd = startCrowd(velmo);
    std::string mainId;
    std::vector<std::string> daemonOf;
    for (StayingLaunch& launch : crowd) {
        const Report platform = launch.platform();
        if (platform.has("-useDaemon")) {
            daemonOf.push_back(platform.after("-useDaemon"));
        } else {
            EXPECT_EQ(mainId, "") << "a second main platform: " << platform.pid;
            mainId = std::to_string(platform.pid);
        }
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, Installation::kLimit);
    EXPECT_EQ(daemonOf, std::vector<std::string>(kLaunchers - 1, mainId));
    EXPECT_EQ(readFile(velmo.workspace + "/.rcp.lock"), mainId + "          ");
    EXPECT_EQ(readFile(velmo.workspace + "/.rcp.main"), mainId + "    ");
    for (StayingLaunch& launch : crowd) {
        EXPECT_TRUE(launch.running());
        EXPECT_EQ(launch.finish().status, 0);
    }
}

TEST(CrowdOfLaunchers, OneBecomesThePlatformAndTheOthersItsDaemonsWithExec) {
    expectOneMainPlatform("0");
}

TEST(CrowdOfLaunchers, OneBecomesThePlatformAndTheOthersItsDaemonsInProcess) {
    expectOneMainPlatform("1");
}

// The clock that files are stamped with: it lags behind the exact one.
long long fileClock() {
    timespec now{};
#ifdef CLOCK_REALTIME_COARSE
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
#else
    clock_gettime(CLOCK_REALTIME, &now);
#endif
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

long long timeOf(const std::string& file) {
    struct stat status {};
    EXPECT_EQ(stat(file.c_str(), &status), 0) << file;
#ifdef __APPLE__
    const timespec& time = status.st_mtimespec;
#else
    const timespec& time = status.st_mtim;
#endif
    return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

struct MainPlatform {
    long long begin = 0;
    long long killed = 0;  // 0: never
    pid_t pid = 0;
};

unsigned seed() {
    const char* given = std::getenv("RCP_TEST_SEED");
    const unsigned result = given == nullptr
                                ? std::random_device()()
                                : static_cast<unsigned>(std::strtoul(given, nullptr, 10));
    std::cout << "seed " << result << "\n";
    return result;
}

// Kills launchers, which may be platforms already, at random instants; returns when each was.
std::vector<long long> killSome(std::vector<StayingLaunch>& crowd, std::mt19937& engine) {
    std::vector<long long> killed(crowd.size(), 0);
    for (int kill = 0; kill < kKills; ++kill) {
        std::this_thread::sleep_for(std::chrono::microseconds(engine() % 40'000));
        const size_t victim = engine() % crowd.size();
        if (killed[victim] == 0) {
            killed[victim] = fileClock();
            crowd[victim].kill();
        }
    }
    return killed;
}

void expectOneAtATime(std::vector<MainPlatform> mains) {
    std::sort(mains.begin(), mains.end(), [](const MainPlatform& one, const MainPlatform& other) {
        return one.begin < other.begin;
    });
    for (size_t i = 1; i < mains.size(); ++i) {
        EXPECT_NE(mains[i - 1].killed, 0) << mains[i - 1].pid << " lived beside " << mains[i].pid;
        EXPECT_LE(mains[i - 1].killed, mains[i].begin)
            << mains[i - 1].pid << " still lived when " << mains[i].pid << " came up";
    }
}

void expectOneMainPlatformAtATime(const char* inProcess) {
    std::mt19937 engine(seed());
    Installation velmo;
    velmo.set("invoke.eclipse.dylib", inProcess);
    std::vector<StayingLaunch> crowd = startCrowd(velmo);
    const std::vector<long long> killed = killSome(crowd, engine);
    std::set<std::string> ids;
    for (const StayingLaunch& launch : crowd) {
        ids.insert(std::to_string(launch.pid()));
    }
    std::vector<MainPlatform> mains;
    for (size_t i = 0; i < crowd.size(); ++i) {
        const std::optional<Report> platform =
            killed[i] == 0 ? crowd[i].platform() : crowd[i].reported();
        if (platform && !platform->has("-useDaemon")) {
            mains.push_back({timeOf(crowd[i].reportFile()), killed[i], crowd[i].pid()});
        } else if (platform) {
            EXPECT_TRUE(ids.contains(platform->after("-useDaemon")));
        }
    }
    expectOneAtATime(mains);
    const bool isMainThere = std::any_of(mains.begin(), mains.end(),
                                         [](const MainPlatform& main) { return main.killed == 0; });
    EXPECT_EQ(velmo.start().has("-useDaemon"), isMainThere) << "the lock is free again";
    for (size_t i = 0; i < crowd.size(); ++i) {
        const Launch launch = crowd[i].finish();
        EXPECT_EQ(launch.signal, killed[i] == 0 ? 0 : SIGKILL);
        EXPECT_EQ(launch.status, killed[i] == 0 ? 0 : -1);
    }
}

TEST(CrowdOfLaunchers, KilledOnesNeverMakeTwoPlatformsWithExec) {
    expectOneMainPlatformAtATime("0");
}

TEST(CrowdOfLaunchers, KilledOnesNeverMakeTwoPlatformsInProcess) {
    expectOneMainPlatformAtATime("1");
}

}  // namespace

}  // namespace acceptance
