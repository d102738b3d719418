#include "launcher/user_area/unfinished_files.h"

#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>

namespace rcp {
namespace {

constexpr const wchar_t* kInWorkspace[] = {
    L"/.rcp.provisioning.tmp",
    L"/platform.xml.old.tmp",
    L"/registry.old.tmp",
    L"/bookmarks.xml.old.tmp",
    L"/applications/eclipse/.eclipseextension.tmp",
};

constexpr const wchar_t* kInConfiguration[] = {
    L"/args.properties.tmp",       L"/config.ini.tmp",
    L"/rcpinstall.properties.tmp", L"/rcpinstall.properties.tmp.tmp",
    L"/rcpinstall.properties.new", L"/org.eclipse.update/platform.xml.tmp",
};

bool isGone(const std::wstring& path) {
    return deleteFile(path) || errno == ENOENT;
}

}  // namespace

std::wstring unfinishedNoteOf(const std::wstring& workspace) {
    return osPath(workspace + L"/.rcp.unfinished");
}

// By name, not by pattern: a file of the user's that only looks like one of these stays.
bool removeUnfinishedFiles(const std::wstring& workspace, const std::wstring& configuration) {
    bool areGone = true;
    for (const wchar_t* name : kInWorkspace) {
        areGone &= isGone(osPath(workspace + name));
    }
    for (const wchar_t* name : kInConfiguration) {
        areGone &= isGone(osPath(configuration + name));
    }
    return areGone;
}

}  // namespace rcp
