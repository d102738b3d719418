#include "launcher/process_entry.h"

#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/command_line/plan.h"
#include "launcher/hand_off.h"
#include "launcher/launch.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "platform/install_location.h"
#include "platform/platform.h"
#include "platform/process.h"
#include "platform/signals.h"
#include "platform/standard_streams.h"
#include "platform/text.h"

#include <errno.h>
#include <locale.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstring>
#include <exception>
#include <string_view>
#include <utility>

namespace rcp {
namespace {

constexpr char kDefaultJavaHome[] = "/Applications/ZUN Velmo.app/jre/Contents/Home";

// The property's value, or `otherwise` when it is missing or empty.
std::wstring valueOr(Key key, const wchar_t* otherwise, const PropertyList& properties) {
    const std::wstring* value = findProperty(key, properties);
    return value == nullptr || value->empty() ? otherwise : *value;
}

std::wstring jvmLocation(const PropertyList& properties) {
    return valueOr(keys::kJvmLocation, defaults::kJvmLocation, properties);
}

// setlocale(3) with the reason for a failure: none where the C library leaves no errno.
const char* setCharacterType(const char* name) {
    errno = 0;
    const char* set = setlocale(LC_CTYPE, name);
    if (set == nullptr) {
        fatal(because(errno), messages.localeNotSet);
    }
    return set;
}

Arguments wideArguments(int argc, char** argv) {
    Arguments arguments;
    arguments.reserve(static_cast<std::size_t>(argc) + 3);
    for (int i = 0; i < argc; ++i) {
        arguments.emplace_back(chartowcs(argv[i]).get(),
                               Origin{nullptr, static_cast<std::size_t>(i)});
        if (arguments.back().text.empty() && *argv[i] != '\0') {
            report(noReason(), messages.argumentNoText, i);
        }
    }
    if (arguments.empty()) {
        // Started without even a name: the path that the system knows stands in.
        arguments.push_back(toWide(launcherExecutable()));
    }
    return arguments;
}

// What the launcher's own properties decide before the start-up sequence.
void applyProperties(Arguments& arguments, const PropertyList& properties, Start start) {
    if (start != Start::kRestart) {
        rewriteExtensionDirectories(arguments, properties);
        appendVm(arguments, properties);
    }
}

void dumpArguments(const Arguments& arguments) {
    const ForcedTracing forced;
    traceArguments(messages.mainArguments, arguments);
}

// All that comes before the hand-off. False for a launch that has to begin anew.
bool prepareLaunch(Launch& launch, int argc, char** argv) {
    launch.arguments = wideArguments(argc, argv);
    const Start start = haveLaunchOption(options::kRestart, {argv, argv + argc}) ? Start::kRestart
                                                                                 : Start::kOrdinary;
    Installation installation = readInstallation();
    applyProperties(launch.arguments, installation.properties, start);
    setDebug(isDebug(launch.arguments));
    dumpArguments(launch.arguments);
    doVersionCheck(launch.arguments);
    launch.plan = startup(launch, std::move(installation), start);
    if (launch.plan && launch.plan->kind == LaunchKind::kPlatform) {
        addForEveryPlatform(*launch.plan);
    }
    return launch.plan.has_value();
}

// What the standard library throws is a fault of ours. What was recorded so far is not lost to it.
int unexpectedEnd(std::string_view reason) {
    report(noReason(), messages.unexpectedFailure, reason);
    return endedWith(255);
}

}  // namespace

void run(Launch& launch, int argc, char** argv) {
    if (!isJREPluginInstalled() && GetJavaHome().empty()) {
        quitWithNoJavaWarning();
    }
    setCharacterLocale();
    while (!prepareLaunch(launch, argc, argv)) {
        launch = Launch();
    }
    handOff(launch);
}

int runLauncher(int argc, char** argv) {
    Launch launch;  // its lock is held until the last record is written
    try {
        openMissingStandardStreams();
        ignoreFileSizeSignal();
        installOutOfMemoryReport();
        run(launch, argc, argv);
        return 0;
    } catch (const LaunchEnded& end) {
        return endedWith(end.status);
    } catch (const std::exception& exception) {
        return unexpectedEnd(exception.what());
    } catch (...) {
        return unexpectedEnd("unknown");
    }
}

void setCharacterLocale() {
    if (std::strcmp(setCharacterType(""), "C") == 0) {
        setCharacterType(platform::kUtf8LocaleName);
    }
}

void rewriteExtensionDirectories(Arguments& arguments, const PropertyList& properties) {
    const std::wstring suffix = L":" + jvmLocation(properties) +
                                valueOr(keys::kJvmExtPath, defaults::kJvmExtPath, properties);
    const auto isMatch = [](const Argument& argument) {
        return argument.text.starts_with(options::kExtensionDirectories);
    };
    std::wstring last;
    for (const Argument& argument : arguments) {
        if (isMatch(argument)) {
            last = argument.text + suffix;
        }
    }
    for (Argument& argument : arguments) {
        if (isMatch(argument)) {
            argument.text = last;
        }
    }
}

void appendVm(Arguments& arguments, const PropertyList& properties) {
    arguments.emplace_back(std::wstring(options::kVm));
    const Property* location = properties.find(keys::kJvmLocation);
    arguments.emplace_back(
        jvmLocation(properties) + valueOr(keys::kJvmLibPath, defaults::kJvmLibPath, properties),
        location == nullptr ? Origin() : location->origin);
}

void addForEveryPlatform(Plan& plan) {
    plan.line.add(options::kFileEncoding, whys::kTextsAreUtf8);
    plan.line.add(options::kStartOnFirstThread, whys::kFirstThread);
}

void doVersionCheck(const Arguments& arguments) {
    if (arguments.size() == 2 && hasOption(options::kVersion, arguments)) {
        fatal(noReason(), messages.version, kVersion);
    }
}

bool isJREPluginInstalled() {
    return true;
}

std::string GetJavaHome() {
    const std::string_view home = kDefaultJavaHome;
    return std::string(home.substr(0, home.find('\n')));
}

void quitWithNoJavaWarning() {
    runProgram({std::string(kDefaultJavaHome) + "/bin/java"});
    exit(1);
}

}  // namespace rcp
