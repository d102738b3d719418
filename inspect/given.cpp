#include "inspect/given.h"

#include "inspect/check/launcher_end.h"
#include "inspect/commands.h"
#include "inspect/locate.h"
#include "inspect/rehearsal/staged_tree.h"
#include "launcher/process_entry.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <utility>

namespace rcp::inspect {
namespace {

const std::map<std::string, Format> kFormats{{"text", Format::kText},
                                             {"json", Format::kJson},
                                             {"sarif", Format::kSarif},
                                             {"html", Format::kHtml}};

// Options while they are being settled. Each step tells what is wrong, or nothing.
class Settlement {
  public:
    Settlement(Given given, const Command& command, Options options)
        : given_(std::move(given)), command_(command), options_(std::move(options)) {}

    Settled settle() && {
        std::string problem = settleFormat();
        const bool isMailed = options_.format == Format::kHtml || command_.carryOut == report;
        options_.isRedacted |= isMailed && !given_.showsSecrets;
        if (problem.empty()) {
            problem = settleSubject();
        }
        if (problem.empty()) {
            problem = settleInstallation();
        }
        return {std::move(options_), std::move(problem)};
    }

  private:
    std::string settleFormat();
    std::string settleSubject();
    std::string settleInstallation();

    Given given_;
    const Command& command_;
    Options options_;
};

// --format FORMAT, or "--format html FILE": the page needs a name.
std::string Settlement::settleFormat() {
    const std::vector<std::string>& given = given_.format;
    if (given.empty()) {
        return {};
    }
    const auto known = std::find(command_.formats.begin(), command_.formats.end(), given.front());
    if (known == command_.formats.end()) {
        return "--format: '" + given.front() + "' is no format of " + command_.name;
    }
    options_.format = kFormats.at(given.front());
    if (options_.format == Format::kHtml) {
        if (given.size() != 2) {
            return "--format html: the file to write is missing";
        }
        options_.page = given.back();
    } else if (given.size() != 1) {
        return "--format " + given.front() + ": '" + given.back() + "' is one argument too many";
    }
    return {};
}

// The user and the tree whose launch it is, and what is asked about.
std::string Settlement::settleSubject() {
    if (given_.isPathEmpty) {
        return "an empty path names no launcher";
    }
    for (std::string* path : {&given_.user.environmentFile, &given_.user.home}) {
        if (!path->empty()) {
            *path = std::filesystem::absolute(*path);
        }
    }
    Became user = become(given_.user);
    if (!user.problem.empty()) {
        return user.problem;
    }
    options_.environmentFile = given_.user.environmentFile;
    options_.variableLines = std::move(user.lines);
    endOf(setCharacterLocale);
    if (given_.isStaged && !stage(given_.root)) {
        return "no folder " + given_.root;
    }
    if (command_.carryOut == check && !given_.subjects.empty()) {
        if (!given_.launcher.empty() || !given_.installation.empty()) {
            return "check DIR takes neither --install nor --launcher";
        }
        given_.installation = given_.subjects.front();
        options_.roots = given_.subjects.size() > 1 ? given_.subjects : std::vector<std::string>();
    } else if (!given_.subjects.empty()) {
        options_.subject = given_.subjects.front();
    }
    if (!options_.roots.empty() && options_.format == Format::kHtml) {
        return "--format html: a page is of one installation";
    }
    return {};
}

std::string Settlement::settleInstallation() {
    if (given_.launcher.empty() && given_.installation.empty()) {
        given_.installation = ".";
    }
    options_.launcher =
        launcherPath(given_.launcher, given_.installation,
                     command_.carryOut == check ? Launcher::kMayBeMissing : Launcher::kIsThere);
    const bool needsLauncher = command_.carryOut != why || needsLaunch(options_.subject);
    if (options_.launcher.empty() && needsLauncher && options_.roots.empty()) {
        return "no launcher at " +
               (given_.launcher.empty() ? given_.installation : given_.launcher) +
               (given_.root.empty() ? "" : " of the tree in " + given_.root) +
               whyNoLauncher(given_.launcher, given_.installation) +
               "; give --install DIR, where DIR holds rcp/rcplauncher or is an application "
               "bundle, or --launcher FILE";
    }
    options_.installation = installationOf(options_.launcher);
    if (!options_.installation.empty()) {
        stageAlone(options_.installation);
    }
    if (!given_.other.empty()) {
        const Unstaged own;
        options_.other = launcherPath({}, given_.other, Launcher::kIsThere);
        if (options_.other.empty()) {
            return "no launcher at " + given_.other + whyNoLauncher({}, given_.other);
        }
    }
    return {};
}

}  // namespace

Settled settle(Given given, const Command& command, Options options) {
    return Settlement(std::move(given), command, std::move(options)).settle();
}

}  // namespace rcp::inspect
