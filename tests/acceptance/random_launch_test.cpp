// What must hold for every launch, whatever the property files and arguments: tried with many
// random ones. The seed is fixed and printed; RCP_TEST_SEED sets another.
#include "checks.h"
#include "random_installation.h"

#include <algorithm>
#include <map>

namespace acceptance {

namespace {

// The options for the platform: before the separator, or behind the main class.
Texts platformPart(const Report& platform) {
    if (platform.has("org.eclipse.core.launcher.Main")) {
        return platform.behind("org.eclipse.core.launcher.Main");
    }
    const auto end = std::find(platform.arguments.begin(), platform.arguments.end(), "-vmargs");
    return {platform.arguments.begin(), end};
}

void expectOrderOfEveryLaunch(const Report& platform) {
    ASSERT_GE(platform.arguments.size(), 4U);
    EXPECT_EQ(platform.arguments.back(), "-XstartOnFirstThread");
    EXPECT_EQ(*(platform.arguments.end() - 2), "-Dfile.encoding=UTF-8");
    const Texts options = platformPart(platform);
    for (const char* option : {"-data", "-configuration"}) {
        EXPECT_EQ(std::count(options.begin(), options.end(), option), 1) << option;
    }
    const auto data = std::find(options.begin(), options.end(), "-data");
    ASSERT_GE(options.end() - data, 4);
    EXPECT_EQ(*(data + 2), "-configuration");
    EXPECT_TRUE((data + 3)->ends_with("/.config")) << *(data + 3);
}

class RandomLaunches : public testing::TestWithParam<unsigned> {
  protected:
    void SetUp() override { NEEDS_PRIVATE_TMP(); }

    // One launch; checks what holds for all.
    void launchOnce(Installation& velmo, Dice& dice) {
        const Texts properties = makeRandom(velmo, dice);
        const Texts arguments = randomArguments(velmo, dice);
        SCOPED_TRACE(describe(properties, arguments));
        const Launch launch = velmo.launch(arguments);
        EXPECT_EQ(launch.signal, 0) << launch.output;
        EXPECT_TRUE(launch.status == 0 || launch.status == 255) << launch.status << "\n"
                                                                << launch.output;
        EXPECT_EQ(launch.output, "");
        if (launch.platform) {
            ++started_;
            EXPECT_EQ(launch.status, 0);
            EXPECT_EQ(launch.platform->pid, launch.pid);
            expectOrderOfEveryLaunch(*launch.platform);
            expectNoStrangeJvmArgument(*launch.platform, arguments, properties);
        }
    }

    static void expectNoStrangeJvmArgument(const Report& platform, const Texts& arguments,
                                           const Texts& properties) {
        for (const std::string& option : platformPart(platform)) {
            if (!option.starts_with("vmarg.")) {
                continue;
            }
            const bool given =
                std::find(arguments.begin(), arguments.end(), option) != arguments.end();
            const bool extended =
                std::any_of(properties.begin(), properties.end(), [&](const std::string& line) {
                    return line.starts_with("config.") && line.ends_with(option);
                });
            EXPECT_TRUE(given || extended) << option;
        }
    }

    void run(unsigned seed, int launches) {
        Dice dice(seedFor(seed));
        for (int i = 0; i < launches && !HasFailure(); ++i) {
            SCOPED_TRACE("launch " + std::to_string(i));
            Installation velmo;
            launchOnce(velmo, dice);
        }
        EXPECT_GT(started_, launches / 4) << "too few of them started a platform";
    }

    int started_ = 0;
};

TEST_P(RandomLaunches, NeverCrashAndKeepTheOrderOfTheCommandLine) {
    run(GetParam(), 50);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomLaunches, testing::Range(1U, 7U));

// The map of JVM arguments, worked out from its sources: the first source of a key wins, an empty
// value writes nothing, the keys' order is that of their characters.
using RandomJvmArguments = ShutIn;

TEST_F(RandomJvmArguments, ComeFromTheFirstSourceInKeyOrder) {
    Dice dice(seedFor(7));
    const Texts names = {"a", "b", "B", "1", "10", "9", "a.a", "_", "é", "zz"};
    for (int i = 0; i < 50 && !testing::Test::HasFailure(); ++i) {
        Installation velmo;
        std::map<std::string, std::string> expected;
        int number = 0;
        const auto next = [&](std::string& line, const char* prefix) {
            const std::string key = "vmarg." + dice.pick(names);
            const std::string text =
                dice.chance(15) ? "" : "-Dv." + std::to_string(++number) + "=" + prefix;
            expected.emplace(key, text);
            line = key;
            line.append("=").append(text);
        };
        Texts arguments;
        std::string line;
        for (size_t left = dice.below(4); left > 0; --left) {
            next(line, "given");
            arguments.push_back(line);
        }
        for (size_t left = dice.below(4), extension = 1; left > 0; --left, ++extension) {
            next(line, "extension");
            velmo.set("config.x." + std::to_string(extension), line);
        }
        arguments.emplace_back("-config");
        arguments.emplace_back("x");
        for (size_t left = dice.below(8); left > 0; --left) {
            next(line, "properties");
            velmo.addLine(line);
        }
        for (size_t left = dice.below(8); left > 0; --left) {
            next(line, "user");
            velmo.addInstallLine(line);
        }
        std::string jvm;
        for (size_t left = dice.below(8); left > 0; --left) {
            next(line, "jvm");
            jvm += line + "\n";
        }
        velmo.write("Velmo/rcp/deploy/jvm.properties", jvm);
        Texts values;
        for (const auto& [key, text] : expected) {
            if (!text.empty()) {
                values.push_back(text);
            }
        }
        SCOPED_TRACE("launch " + std::to_string(i));
        expectList(values, velmo.start(arguments).between("-vmargs", "-Drcp.home=" + velmo.home));
    }
}

}  // namespace

}  // namespace acceptance
