#include "inspect/command_line.h"

#include "inspect/check/launcher_end.h"
#include "inspect/commands.h"
#include "inspect/given.h"
#include "inspect/hand_out.h"
#include "inspect/one_of.h"
#include "inspect/rehearsal/rehearsed_calls.h"
#include "inspect/suggestions.h"
#include "launcher/process_entry.h"
#include "platform/signals.h"

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {
namespace {

constexpr std::size_t kNone = std::string::npos;

const std::vector<Command> kCommands{
    {"doctor", "what is right and wrong, on one screen", doctor, {"text", "json"}},
    {"why",
     "the chain that leads to one option, key, variable, path or message",
     why,
     {"text", "json"}},
    {"config", "every property with its value and where it comes from", config, {"text", "json"}},
    {"explain", "what a launch would do, and why", explain, {"text", "json", "html"}},
    {"check", "what is wrong with an installation", check, {"text", "json", "sarif", "html"}},
    {"status", "the state of a workspace", status, {"text", "json"}},
    {"diff",
     "what two installations, or one since its last launch, do differently",
     diff,
     {"text", "json", "html"}},
    {"report", "all of that in an archive that can be mailed", report, {"text"}},
};

// The arguments behind "--" are the launcher's and none of ours, whatever they look like.
std::vector<std::string> splitLauncherArguments(int argc, char** argv,
                                                std::vector<std::string>& own) {
    std::vector<std::string> all(argv + 1, argv + argc);
    const auto separator = std::find(all.begin(), all.end(), "--");
    own.assign(all.begin(), separator);
    return separator == all.end() ? std::vector<std::string>()
                                  : std::vector<std::string>(separator + 1, all.end());
}

int wrongUse(const std::string& text, const std::vector<std::string>& words) {
    const bool isRedacted = std::find(words.begin(), words.end(), "--redact") != words.end();
    std::cerr << "rcpinspect: " << (isRedacted ? redactedProblem(text) : text) << '\n';
    return kWrongUse;
}

bool mayColor() {
    const char* off = getenv("NO_COLOR");
    return (off == nullptr || *off == '\0') && isatty(STDOUT_FILENO) != 0;
}

constexpr std::string_view kValued[] = {"--install", "--launcher", "--root",   "--format",
                                        "--home",    "--user",     "--locale", "--env-file"};
constexpr std::string_view kHelp[] = {"-h", "--help"};

// How many words of the command line are the values of the option at `at`: a page has a name.
std::ptrdiff_t valuesOf(const std::vector<std::string>& own, std::size_t at) {
    const bool isPage = own[at] == "--format" && at + 1 < own.size() && own[at + 1] == "html";
    return isPage ? 2 : isOneOf(kValued, own[at]);
}

// What why is asked about, which may look like an option; the installations of check.
std::vector<std::string> takeSubjects(std::vector<std::string>& own) {
    const bool isWhy = own.front() == "why";
    std::vector<std::string> subjects;
    for (std::size_t i = 1; (isWhy || own.front() == "check") && i < own.size(); ++i) {
        const std::string& word = own[i];
        const bool isOption =
            isWhy ? isOneOf(kHelp, word) || (word.starts_with("--") && word.find('=') != kNone)
                  : word.starts_with('-');
        if (const std::ptrdiff_t values = valuesOf(own, i); values > 0) {
            i += static_cast<std::size_t>(values);
        } else if (!isOption && (!isWhy || subjects.empty())) {
            subjects.push_back(word);
            own.erase(own.begin() + static_cast<std::ptrdiff_t>(i--));
        }
    }
    return subjects;
}

CommandWords commandWords(const CLI::App& app) {
    CommandWords known;
    for (const Command& command : kCommands) {
        known.commands.emplace_back(command.name);
    }
    for (const CLI::App* sub : app.get_subcommands()) {
        known.hasCommand = true;
        for (const CLI::Option* option : sub->get_options()) {
            std::vector<std::string> names{option->get_name()};
            for (const std::string& name : option->get_snames()) {
                names.push_back("-" + name);
            }
            known.options.insert(known.options.end(), names.begin(), names.end());
            if (option->get_expected_max() > 0) {
                known.valued.insert(known.valued.end(), names.begin(), names.end());
            }
        }
    }
    return known;
}

void addUser(CLI::App& sub, OtherUser& user) {
    sub.add_option("--home", user.home, "the home folder of the user to rehearse");
    sub.add_option("--user", user.name, "his name");
    sub.add_option("--locale", user.locale, "his locale");
    sub.add_option("--env-file", user.environmentFile, "his variables, as env prints them");
}

void addCommands(CLI::App& app, Given& given, Options& options) {
    for (const Command& command : kCommands) {
        CLI::App* sub = app.add_subcommand(command.name, command.description);
        sub->add_option("--install", given.installation, "the installation's directory");
        sub->add_option("--launcher", given.launcher, "the launcher's executable")
            ->excludes("--install");
        sub->add_option("--root", given.root, "the folder below which the installation is staged");
        sub->add_option("--format", given.format, "text, json and, of some, sarif or html FILE")
            ->expected(1, 2);
        sub->add_flag("--redact", options.isRedacted,
                      "secrets, names and home folders are taken out; of pages and reports always");
        sub->add_flag("--show-secrets", given.showsSecrets, "a page or report with secrets and all")
            ->excludes("--redact");
        addUser(*sub, given.user);
    }
}

// Those that not every command has.
void addOptions(CLI::App& app, Given& given, Options& options) {
    for (const char* name : {"doctor", "check"}) {
        app.get_subcommand(name)
            ->add_flag("--try-jvm", options.isTryingJvm,
                       "starts the JVM with the launch's options and -version")
            ->excludes("--root");
    }
    app.get_subcommand("check")->add_flag("--strict", options.isStrict, "warnings count as errors");
    app.get_subcommand("check")->footer("DIR...: installations, of several a line each.");
    app.get_subcommand("why")->footer(
        "WHAT: an option, a key, a variable, a path, or a number such as "
        "ZYPRA0088E or RI601. It may begin with \"-\".");
    app.get_subcommand("config")->add_flag("--files", options.isFiles,
                                           "the files as they stand, every line with its place");
    for (const char* name : {"explain", "check", "diff"}) {
        app.get_subcommand(name)->add_flag("--all", options.isAll, "lists in full");
    }
    app.get_subcommand("status")->add_flag("--watch", options.isWatching,
                                           "goes on until interrupted");
    app.get_subcommand("diff")->add_flag("--since-last", options.isSinceLast,
                                         "against the recorded last launch");
    app.get_subcommand("report")->add_option("-o,--output", options.output,
                                             "the archive to write; the default name has the date");
    app.get_subcommand("report")->add_flag("--host", options.isWithHost,
                                           "the name of this machine too");
    app.get_subcommand("diff")->add_option("--with", given.other,
                                           "the installation to compare with: the older one");
}

}  // namespace

int run(int argc, char** argv) {
    ignoreFileSizeSignal();
    const InstalledCalls quiet(quietCalls());
    endOf(setCharacterLocale);
    std::vector<std::string> own;
    Options options;
    options.arguments = splitLauncherArguments(argc, argv, own);
    options.isColored = mayColor();

    CLI::App app{"See what a launch of rcplauncher will do, and why, without doing it.",
                 "rcpinspect"};
    app.set_version_flag("--version", RCP_VERSION);
    app.require_subcommand(1);
    app.footer("What stands behind \"--\" are the launcher's own arguments.");
    if (own.empty() ||
        (own.front().starts_with("--") && own.front() != "--help" && own.front() != "--version")) {
        own.insert(own.begin(), "doctor");
    }
    Given given;
    given.subjects = takeSubjects(own);
    const std::vector<std::string> words = own;
    addCommands(app, given, options);
    addOptions(app, given, options);
    try {
        std::reverse(own.begin(), own.end());  // as CLI11 takes a vector
        app.parse(own);
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        const std::string wrong = wrongWord(words, commandWords(app));
        return wrongUse(wrong.empty() ? error.what() : wrong, words);
    }
    const std::string chosen = app.get_subcommands().front()->get_name();
    const auto command = std::find_if(kCommands.begin(), kCommands.end(),
                                      [&](const Command& one) { return one.name == chosen; });
    const CLI::App& sub = *app.get_subcommands().front();
    given.isPathEmpty = (sub.count("--install") > 0 && given.installation.empty()) ||
                        (sub.count("--launcher") > 0 && given.launcher.empty());
    given.isStaged = sub.count("--root") > 0;
    const Settled settled = settle(given, *command, options);
    if (!settled.problem.empty()) {
        return wrongUse(settled.problem, words);
    }
    const int status = command->carryOut == report ? report(settled.options)
                                                   : handOut(command->carryOut, settled.options);
    // What is not all there must not pass for a result.
    if (!std::cout.flush() || fflush(stdout) != 0 || ferror(stdout) != 0) {
        std::cerr << "rcpinspect: the output cannot be written\n";
        return kCannotCreate;
    }
    return status;
}

}  // namespace rcp::inspect
