// What must hold for every launch, whatever the property files and arguments: tried with many
// random ones. The seed is fixed and printed; RCP_TEST_SEED sets another.
#include "checks.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <random>

namespace acceptance {

namespace {

class Dice {
  public:
    explicit Dice(unsigned seed) : engine_(seed) {}

    size_t below(size_t limit) { return static_cast<size_t>(engine_()) % limit; }
    bool chance(size_t percent) { return below(100) < percent; }
    template <typename Item>
    const Item& pick(const std::vector<Item>& items) {
        return items[below(items.size())];
    }

  private:
    std::mt19937 engine_;
};

unsigned seedFor(unsigned standard) {
    const char* given = std::getenv("RCP_TEST_SEED");
    const unsigned seed =
        given == nullptr ? standard : static_cast<unsigned>(std::strtoul(given, nullptr, 10));
    std::cout << "seed " << seed << "\n";
    return seed;
}

// Text without a separator of paths, so that nothing made of it leaves the test's own folders.
std::string junk(Dice& dice) {
    static const Texts pieces = {"a",  "b",  "Z",    "0",     " ",  "=", ":",  "#", "!",
                                 "\\", "${", "}",    "%s",    "%n", "é", "日", "😀", "\t",
                                 ",",  "$",  "env.", "prop.", "x",  ".", "-",  "'", "\xc3"};
    std::string text;
    for (size_t left = dice.below(12); left > 0; --left) {
        text += dice.pick(pieces);
    }
    return text == ".." ? "dots" : text;
}

// A value that is usually sound.
std::string value(Dice& dice) {
    static const Texts sound = {"value",
                                "two words",
                                "${rcp.home}/x",
                                "${env.HOME}",
                                "${env.NO,other}",
                                "${workspace.location}",
                                "${prop.name}",
                                "",
                                "1"};
    return dice.chance(80) ? dice.pick(sound) : junk(dice);
}

std::string randomLine(Dice& dice) {
    static const Texts keys = {"application",
                               "product",
                               "personality",
                               "cp",
                               "Xbootclasspath.append",
                               "Xbootclasspath.prepend",
                               "vmfix.noconsole",
                               "library.path.append",
                               "library.path.prepend",
                               "env.set.FOO",
                               "env.unset.BAR",
                               "env.JAVA_HIGH_ZIPFDS",
                               "name",
                               "vm",
                               "jvm.location",
                               "jvm.libpath",
                               "jvm.extpath",
                               "java.home",
                               "jvm.library.path",
                               "-Dsome",
                               "-Xss",
                               "config.x.1",
                               "config.x.2",
                               "config.x.3",
                               "update.policy.managed",
                               "jvm.feature.id",
                               "com.ovr.rcp.core.locale",
                               "invoke.eclipse.dylib"};
    switch (dice.below(8)) {
        case 0:
            return junk(dice);
        case 1:
            return "# " + junk(dice);
        case 2:
            return dice.pick(keys) + "=" + value(dice) + "\\";
        default:
            return dice.pick(keys) + "=" + value(dice);
    }
}

Texts randomArguments(const Installation& velmo, Dice& dice) {
    static const Texts singles = {
        "-one",   "two words",    "-nosplash",         "-console",         "-pb4l",
        "-debug", "-resetconfig", "-noExit",           "-rcpLauncherWait", "-provManifest",
        "100%s",  "größe",        "-Djava.ext.dirs=/x"};
    static const Texts pairs = {
        "-application", "-product", "-personality", "-perfJar", "-configuration",
        "-nl",          "-dir",     "-rcp_old_pid", "-vm",      "-bundleIdentifier"};
    Texts arguments;
    const auto addSome = [&](size_t most) {
        for (size_t left = dice.below(most); left > 0; --left) {
            switch (dice.below(6)) {
                case 0:
                    arguments.push_back(dice.pick(pairs));
                    arguments.push_back("value" + std::to_string(dice.below(9)));
                    break;
                case 1:
                    arguments.push_back(dice.pick(pairs));
                    arguments.push_back(dice.chance(50) ? velmo.path("v") : "/v/bin/java");
                    break;
                case 2:
                    arguments.push_back("-data");
                    arguments.push_back(dice.pick(Texts{velmo.path("ws"), "relative ws",
                                                        "${rcp.home}/ws", velmo.path("ws/")}));
                    break;
                case 3:
                    arguments.push_back("x" + junk(dice));
                    break;
                default:
                    arguments.push_back(dice.pick(singles));
            }
        }
    };
    addSome(8);
    if (dice.chance(30)) {
        arguments.push_back("-config");
        arguments.emplace_back("x");
    }
    addSome(4);
    if (dice.chance(50)) {
        arguments.push_back("-vmargs");
        addSome(5);
    }
    if (dice.chance(3)) {
        arguments.push_back(dice.pick(Texts{"-restart", "-data", "-vm", "-config", "\"", ""}));
    }
    return arguments;
}

std::string describe(const Texts& properties, const Texts& arguments) {
    std::string text = "properties:\n";
    for (const std::string& line : properties) {
        text += "  " + line + "\n";
    }
    text += "arguments:\n";
    for (const std::string& argument : arguments) {
        text += "  [" + argument + "]\n";
    }
    return text;
}

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
        Texts properties;
        for (size_t left = dice.below(25); left > 0; --left) {
            properties.push_back(randomLine(dice));
            velmo.addLine(properties.back());
        }
        velmo.addLine("").addLine("end=of file");
        for (size_t left = dice.below(4); left > 0; --left) {
            velmo.addInstallLine(randomLine(dice));
        }
        if (dice.chance(40)) {
            std::string text;
            for (size_t left = dice.below(6); left > 0; --left) {
                text += randomLine(dice) + "\n";
            }
            velmo.write("Velmo/rcp/deploy/jvm.properties", text);
        }
        if (dice.chance(20)) {
            velmo.useServiceConfiguration();
        }
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
TEST(RandomJvmArguments, ComeFromTheFirstSourceInKeyOrder) {
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
