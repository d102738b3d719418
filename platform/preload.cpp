#include "platform/preload.h"

#include "base/system_calls.h"
#include "diagnostics/svc_debug.h"
#include "launcher/vocabulary/paths.h"
#include "launcher/vocabulary/variables.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

namespace rcp {
namespace {

enum class LinkPlace { kMissing, kOwnLink, kForeign, kOther };

// What stands at the link's name. The entry itself is looked at, so a link to a missing library is
// seen too.
LinkPlace entryAt(const std::string& path) {
    struct stat status {};
    if (calls::lstat(path.c_str(), &status) != 0) {
        return LinkPlace::kMissing;
    }
    if (status.st_uid != geteuid() && status.st_uid != 0) {
        return LinkPlace::kForeign;
    }
    return S_ISLNK(status.st_mode) ? LinkPlace::kOwnLink : LinkPlace::kOther;
}

// Makes the name free for a link to `library`, or leaves the link that is already right. False when
// an entry of another user stays in the way.
bool clearWay(const std::string& linkPath, const std::string& library) {
    const LinkPlace entry = entryAt(linkPath);
    if (entry == LinkPlace::kMissing) {
        return true;
    }
    SvcDebugOutA("setPreload(): link path already exists.");
    if (entry == LinkPlace::kOwnLink) {
        const std::string target = readsymln(linkPath);
        SvcDebugOutA("setPreload(): existing link is to: %s", target);
        if (target == library) {
            return true;
        }
    }
    SvcDebugOutA("setPreload(): removing existing link ...");
    return calls::unlink(linkPath.c_str()) == 0 || entry != LinkPlace::kForeign;
}

// "USER", which becomes part of a file name.
std::wstring userName() {
    const std::optional<std::wstring> user = getEnv(variables::kUser);
    if (!user || user->find(L'/') != std::wstring::npos) {
        fatal(noReason(), messages.noUserForPreload);
    }
    return *user;
}

std::wstring linkPathFor(const std::wstring& library, const std::wstring& qualifier) {
    const std::size_t slash = library.rfind(L'/');
    if (slash == std::wstring::npos) {
        fatal(noReason(), messages.preloadWithoutFileName);
    }
    const std::wstring fileName = library.substr(slash + 1);
    SvcDebugOutW(L"setPreload():library name = %s", fileName);
    std::wstring path = paths::kPreloadLink + userName() + L"." + qualifier + L"." + fileName;
    SvcDebugOutW(L"setPreload():linkPath=%s", path);
    return path;
}

void setVariable(const std::wstring& value) {
    setEnv(variables::kPreload, value, Overwrite::kYes);
    SvcDebugOutW(L"setPreload():setting LD_PRELOAD=%s", value);
}

}  // namespace

std::string readsymln(const std::string& link) {
    std::string buffer(1024, '\0');
    for (;;) {
        const ssize_t length = calls::readlink(link.c_str(), buffer.data(), buffer.size());
        if (length < 0) {
            const int error = errno;
            fatal(because(error), messages.preloadPathUnknown, error);
        }
        if (static_cast<std::size_t>(length) < buffer.size()) {
            buffer.resize(static_cast<std::size_t>(length));
            return buffer;
        }
        buffer.resize(buffer.size() * 2);
    }
}

void setPreload(const std::wstring& library, const std::wstring& qualifier) {
    if (library.find(L' ') == std::wstring::npos) {
        setVariable(library);
        return;
    }
    SvcDebugOutW(L"setPreload():found property: library.preload=%s", library);
    const std::string libraryPath = toNarrow(library);
    if (!existsA(libraryPath)) {
        if (errno != ENOENT && errno != ENOTDIR) {
            // It may well be there, and whoever configured it counts on it.
            report(because(errno), messages.preloadNotReadable, library);
        }
        return;
    }
    const std::wstring wideLinkPath = linkPathFor(library, qualifier);
    const std::string linkPath = toNarrow(wideLinkPath);
    if (!clearWay(linkPath, libraryPath)) {
        report(noReason(), messages.preloadLinkForeign, wideLinkPath);
        return;
    }
    if (entryAt(linkPath) == LinkPlace::kMissing) {
        SvcDebugOutA("setPreload(): creating new link ...");
        const int result = calls::symlink(libraryPath.c_str(), linkPath.c_str());
        SvcDebugOutA("setPreload(): symlink() result = %d", result);
    }
    if (entryAt(linkPath) == LinkPlace::kForeign) {
        report(noReason(), messages.preloadLinkForeign, wideLinkPath);
        return;
    }
    setVariable(wideLinkPath);
    SvcDebugOutW(L"setPreload():getenv LD_PRELOAD=%s", getEnv(variables::kPreload).value_or(L""));
}

}  // namespace rcp
