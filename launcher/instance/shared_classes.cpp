#include "launcher/instance/shared_classes.h"

#include "base/system_calls.h"
#include "launcher/vocabulary/variables.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/working_directory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string_view>

namespace rcp {
namespace {

// Neither one of these nor what holds it is ever emptied.
struct KeptPlace {
    std::string SharedClassesFacts::*path;
    const wchar_t* name;
};
constexpr KeptPlace kKeptPlaces[] = {
    {&SharedClassesFacts::home, L"the home directory"},
    {&SharedClassesFacts::currentDirectory, L"the current directory"},
    {&SharedClassesFacts::temporary, L"the temporary directory"},
    {&SharedClassesFacts::usersTemporary, L"the temporary directory"},
    {&SharedClassesFacts::installation, L"the installation"},
    {&SharedClassesFacts::workspace, L"the workspace"},
    {&SharedClassesFacts::configuration, L"the configuration area"},
};

std::string withSlash(const std::string& path) {
    return path.ends_with('/') ? path : path + "/";
}

// A folder that the user sees there, such as the one for documents.
bool isFolderOfHome(const std::string& path, const std::string& home) {
    if (home.empty() || !path.starts_with(withSlash(home))) {
        return false;
    }
    const std::string_view name = std::string_view(path).substr(withSlash(home).size());
    return name.find('/') == std::string_view::npos && !name.starts_with('.');
}

// A ".." behind a link means the folder above what the link leads to, which no reader of the path sees.
bool goesUp(const std::string& path) {
    return (path + "/").find("/../") != std::string::npos;
}

std::string reallyAt(const std::string& path) {
    return path.empty() ? path : resolvedPath(path).value_or(lexicalPath(path));
}

std::string variable(VariableName name) {
    return toNarrow(getEnv(name).value_or(L""));
}

}  // namespace

SharedClassesFacts sharedClassesFacts(const std::string& directory, const LaunchInputs& inputs) {
    SharedClassesFacts facts;
    facts.named = directory;
    facts.isLink = isLink(toWide(directory));
    facts.resolved = reallyAt(directory);
    struct stat status {};
    facts.user = geteuid();
    facts.owner = calls::lstat(facts.resolved.c_str(), &status) == 0 ? status.st_uid : ~facts.user;
    facts.home = reallyAt(variable(variables::kHome));
    facts.currentDirectory = platform::workingDirectory();
    facts.temporary = reallyAt("/tmp");
    facts.usersTemporary = reallyAt(variable(variables::kTemporaryFolder));
    facts.installation = reallyAt(toNarrow(inputs.installDir));
    facts.workspace = reallyAt(toNarrow(inputs.workspace));
    facts.configuration = reallyAt(toNarrow(inputs.configuration));
    return facts;
}

std::optional<std::wstring> reasonNotToEmpty(const SharedClassesFacts& facts) {
    if (!facts.named.starts_with('/')) {
        return L"is no absolute path";
    }
    if (facts.isLink) {
        return L"is a symbolic link";
    }
    if (facts.resolved == "/") {
        return L"is the root directory";
    }
    for (const KeptPlace& kept : kKeptPlaces) {
        const std::string& path = facts.*kept.path;
        if (path == facts.resolved) {
            return std::wstring(L"is ") + kept.name;
        }
        if (path.starts_with(withSlash(facts.resolved))) {
            return std::wstring(L"holds ") + kept.name;
        }
    }
    if (isFolderOfHome(facts.resolved, facts.home)) {
        return L"is a folder of the home directory";
    }
    if (goesUp(facts.named)) {
        return L"has an element \"..\"";
    }
    if (facts.owner != facts.user) {
        return L"belongs to another user";
    }
    return std::nullopt;
}

}  // namespace rcp
