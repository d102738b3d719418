#include "inspect/command_line.h"

#include "inspect/check/launcher_end.h"
#include "inspect/commands.h"
#include "inspect/hand_out.h"
#include "inspect/locate.h"
#include "inspect/other_user.h"
#include "inspect/rehearsal/rehearsed_calls.h"
#include "inspect/rehearsal/staged_tree.h"
#include "inspect/suggestions.h"
#include "launcher/process_entry.h"

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>
#include <optional>

namespace rcp::inspect {
namespace {

constexpr std::size_t kNone = std::string::npos;

const std::map<std::string, Format> kFormats{{"text", Format::kText},
                                             {"json", Format::kJson},
                                             {"sarif", Format::kSarif},
                                             {"html", Format::kHtml}};

struct Command {
    const char* name;
    const char* description;
    int (*carryOut)(const Options&);
    std::vector<const char*> formats;
};

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

int wrongUse(const std::string& text) {
    std::cerr << "rcpinspect: " << text << '\n';
    return kWrongUse;
}

bool mayColor() {
    const char* off = getenv("NO_COLOR");
    return (off == nullptr || *off == '\0') && isatty(STDOUT_FILENO) != 0;
}

bool isOneOf(std::initializer_list<std::string_view> words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// How many words of the command line are the values of the option at `at`: a page has a name.
std::ptrdiff_t valuesOf(const std::vector<std::string>& own, std::size_t at) {
    const bool isPage = own[at] == "--format" && at + 1 < own.size() && own[at + 1] == "html";
    return isPage ? 2
                  : isOneOf({"--install", "--launcher", "--root", "--format", "--home", "--user",
                             "--locale", "--env-file"},
                            own[at]);
}

// What why is asked about, which may look like an option; the installations of check.
std::vector<std::string> takeSubjects(std::vector<std::string>& own) {
    const bool isWhy = own.front() == "why";
    std::vector<std::string> subjects;
    for (std::size_t i = 1; (isWhy || own.front() == "check") && i < own.size(); ++i) {
        const std::string& word = own[i];
        const bool isOption = isWhy ? isOneOf({"-h", "--help"}, word) ||
                                          (word.starts_with("--") && word.find('=') != kNone)
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
            known.options.push_back(option->get_name());
            if (option->get_expected_max() > 0) {
                known.valued.push_back(option->get_name());
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

// --format FORMAT, or "--format html FILE": the page needs a name.
std::optional<std::string> settleFormat(const std::vector<std::string>& given,
                                        const Command& command, Options& options) {
    if (given.empty()) {
        return std::nullopt;
    }
    const auto known = std::find(command.formats.begin(), command.formats.end(), given.front());
    if (known == command.formats.end()) {
        return "--format: '" + given.front() + "' is no format of " + command.name;
    }
    options.format = kFormats.at(given.front());
    if (options.format == Format::kHtml) {
        if (given.size() != 2) {
            return "--format html: the file to write is missing";
        }
        options.page = given.back();
    } else if (given.size() != 1) {
        return "--format " + given.front() + ": '" + given.back() + "' is one argument too many";
    }
    return std::nullopt;
}

}  // namespace

int run(int argc, char** argv) {
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
    std::vector<std::string> subjects = takeSubjects(own);
    const std::vector<std::string> words = own;
    std::vector<std::string> format;
    std::string installation;
    std::string launcher;
    std::string root;
    std::string other;
    bool showsSecrets = false;
    OtherUser user;
    for (const Command& command : kCommands) {
        CLI::App* sub = app.add_subcommand(command.name, command.description);
        sub->add_option("--install", installation, "the installation's directory");
        sub->add_option("--launcher", launcher, "the launcher's executable")->excludes("--install");
        sub->add_option("--root", root, "the folder below which the installation is staged");
        sub->add_option("--format", format, "text, json and, of some, sarif or html FILE")
            ->expected(1, 2);
        sub->add_flag("--redact", options.isRedacted,
                      "secrets, names and home folders are taken out; of pages and reports always");
        sub->add_flag("--show-secrets", showsSecrets, "a page or report with secrets and all")
            ->excludes("--redact");
        addUser(*sub, user);
    }
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
    app.get_subcommand("diff")->add_option("--with", other,
                                           "the installation to compare with: the older one");
    try {
        std::reverse(own.begin(), own.end());  // as CLI11 takes a vector
        app.parse(own);
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        const std::string wrong = wrongWord(words, commandWords(app));
        return wrongUse(wrong.empty() ? error.what() : wrong);
    }
    const std::string chosen = app.get_subcommands().front()->get_name();
    const auto command = std::find_if(kCommands.begin(), kCommands.end(),
                                      [&](const Command& one) { return one.name == chosen; });
    if (const auto problem = settleFormat(format, *command, options)) {
        return wrongUse(*problem);
    }
    const bool isMailed = options.format == Format::kHtml || command->carryOut == report;
    options.isRedacted |= isMailed && !showsSecrets;
    const CLI::App& sub = *app.get_subcommands().front();
    if ((sub.count("--install") > 0 && installation.empty()) ||
        (sub.count("--launcher") > 0 && launcher.empty())) {
        return wrongUse("an empty path names no launcher");  // a variable that is not set
    }
    if (const std::string problem = become(user); !problem.empty()) {
        return wrongUse(problem);
    }
    endOf(setCharacterLocale);
    if (sub.count("--root") > 0 && !stage(root)) {
        return wrongUse("no folder " + root);
    }
    if (chosen == "check" && !subjects.empty()) {
        if (!launcher.empty() || !installation.empty()) {
            return wrongUse("check DIR takes neither --install nor --launcher");
        }
        installation = subjects.front();
        options.roots = subjects.size() > 1 ? subjects : std::vector<std::string>();
    } else if (!subjects.empty()) {
        options.subject = subjects.front();
    }
    if (!options.roots.empty() && options.format == Format::kHtml) {
        return wrongUse("--format html: a page is of one installation");
    }
    if (launcher.empty() && installation.empty()) {
        installation = ".";
    }
    options.launcher =
        launcherPath(launcher, installation,
                     command->carryOut == check ? Launcher::kMayBeMissing : Launcher::kIsThere);
    const bool needsLauncher = command->carryOut != why || needsLaunch(options.subject);
    if (options.launcher.empty() && needsLauncher && options.roots.empty()) {
        return wrongUse(
            "no launcher at " + (launcher.empty() ? installation : launcher) +
            (root.empty() ? "" : " of the tree in " + root) +
            "; give --install DIR, where DIR holds rcp/rcplauncher or is an application "
            "bundle, or --launcher FILE");
    }
    options.installation = installationOf(options.launcher);
    if (!options.installation.empty()) {
        stageAlone(options.installation);
    }
    if (!other.empty()) {
        const Unstaged own;
        options.other = launcherPath({}, other, Launcher::kIsThere);
        if (options.other.empty()) {
            return wrongUse("no launcher at " + other);
        }
    }
    const int status =
        command->carryOut == report ? report(options) : handOut(command->carryOut, options);
    // What is not all there must not pass for a result.
    if (!std::cout.flush() || fflush(stdout) != 0 || ferror(stdout) != 0) {
        std::cerr << "rcpinspect: the output cannot be written\n";
        return kCannotCreate;
    }
    return status;
}

}  // namespace rcp::inspect
