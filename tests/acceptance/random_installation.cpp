#include "random_installation.h"

#include <cstdlib>
#include <iostream>

namespace acceptance {

unsigned seedFor(unsigned standard) {
    const char* given = std::getenv("RCP_TEST_SEED");
    const unsigned seed =
        given == nullptr ? standard : static_cast<unsigned>(std::strtoul(given, nullptr, 10));
    std::cout << "seed " << seed << "\n";
    return seed;
}

namespace {

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

}  // namespace

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

const Texts& unusualLines() {
    static const Texts lines = {"install.configuration=multiuser",
                                "install.configuration=lockdown",
                                "install.configuration=userpb",
                                "install.configuration=serial.multiuser",
                                "provisioning=true",
                                "provisioning.application=sample.provision",
                                "provisioning.manifest.version=2",
                                "rcp.data=${env.HOME}/elsewhere",
                                "config.initial.1=-initialCompleteFlag",
                                "config.initial.2=initial.complete",
                                "library.preload=/lib/some.so",
                                "vmarg.Dshare=-Xshareclasses",
                                "vmarg.a=-Xa",
                                "vmarg.a="};
    return lines;
}

Texts makeRandom(Installation& velmo, Dice& dice) {
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
    return properties;
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

}  // namespace acceptance
