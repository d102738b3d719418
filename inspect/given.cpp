#include "inspect/given.h"

#include "inspect/check/launcher_end.h"
#include "inspect/commands.h"
#include "inspect/locate.h"
#include "inspect/rehearsal/staged_tree.h"
#include "launcher/process_entry.h"

#include <algorithm>
#include <map>

namespace rcp::inspect {
namespace {

const std::map<std::string, Format> kFormats{{"text", Format::kText},
                                             {"json", Format::kJson},
                                             {"sarif", Format::kSarif},
                                             {"html", Format::kHtml}};

// --format FORMAT, or "--format html FILE": the page needs a name. Each of these tells what is wrong, or nothing.
std::string settleFormat(const std::vector<std::string>& given, const Command& command,
                         Options& options) {
    if (given.empty()) {
        return {};
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
    return {};
}

// The user and the tree whose launch it is, and what is asked about.
std::string settleSubject(Given& given, const Command& command, Options& options) {
    if (given.isPathEmpty) {
        return "an empty path names no launcher";
    }
    if (std::string problem = become(given.user); !problem.empty()) {
        return problem;
    }
    endOf(setCharacterLocale);
    if (given.isStaged && !stage(given.root)) {
        return "no folder " + given.root;
    }
    if (command.carryOut == check && !given.subjects.empty()) {
        if (!given.launcher.empty() || !given.installation.empty()) {
            return "check DIR takes neither --install nor --launcher";
        }
        given.installation = given.subjects.front();
        options.roots = given.subjects.size() > 1 ? given.subjects : std::vector<std::string>();
    } else if (!given.subjects.empty()) {
        options.subject = given.subjects.front();
    }
    if (!options.roots.empty() && options.format == Format::kHtml) {
        return "--format html: a page is of one installation";
    }
    return {};
}

std::string settleInstallation(Given& given, const Command& command, Options& options) {
    if (given.launcher.empty() && given.installation.empty()) {
        given.installation = ".";
    }
    options.launcher =
        launcherPath(given.launcher, given.installation,
                     command.carryOut == check ? Launcher::kMayBeMissing : Launcher::kIsThere);
    const bool needsLauncher = command.carryOut != why || needsLaunch(options.subject);
    if (options.launcher.empty() && needsLauncher && options.roots.empty()) {
        return "no launcher at " + (given.launcher.empty() ? given.installation : given.launcher) +
               (given.root.empty() ? "" : " of the tree in " + given.root) +
               "; give --install DIR, where DIR holds rcp/rcplauncher or is an application "
               "bundle, or --launcher FILE";
    }
    options.installation = installationOf(options.launcher);
    if (!options.installation.empty()) {
        stageAlone(options.installation);
    }
    if (!given.other.empty()) {
        const Unstaged own;
        options.other = launcherPath({}, given.other, Launcher::kIsThere);
        if (options.other.empty()) {
            return "no launcher at " + given.other;
        }
    }
    return {};
}

}  // namespace

std::string settle(Given given, const Command& command, Options& options) {
    std::string problem = settleFormat(given.format, command, options);
    const bool isMailed = options.format == Format::kHtml || command.carryOut == report;
    options.isRedacted |= isMailed && !given.showsSecrets;
    if (problem.empty()) {
        problem = settleSubject(given, command, options);
    }
    return problem.empty() ? settleInstallation(given, command, options) : problem;
}

}  // namespace rcp::inspect
