#include "launcher/user_area/unfinished_files.h"

#include "platform/files.h"
#include "platform/text.h"

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

}  // namespace

std::wstring unfinishedNoteOf(const std::wstring& workspace) {
    return osPath(workspace + L"/.rcp.unfinished");
}

// By name, not by pattern: a file of the user's that only looks like one of these stays.
void removeUnfinishedFiles(const std::wstring& workspace, const std::wstring& configuration) {
    for (const wchar_t* name : kInWorkspace) {
        deleteFile(osPath(workspace + name));
    }
    for (const wchar_t* name : kInConfiguration) {
        deleteFile(osPath(configuration + name));
    }
}

}  // namespace rcp
