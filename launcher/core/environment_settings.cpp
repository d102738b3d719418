#include "launcher/core/environment_settings.h"

#include "diagnostics/svc_debug.h"
#include "platform/environment.h"
#include "platform/preload.h"

#include <string>
#include <string_view>

namespace rcp {
namespace {

// The NAME of a key prefix.NAME; empty for a key that has none.
std::wstring variableName(const Property& property, std::wstring_view prefix) {
    const std::wstring& key = property.key;
    if (key.size() <= prefix.size() || key[prefix.size()] != L'.') {
        return {};
    }
    return key.substr(prefix.size() + 1);
}

// Appends one part of a search path. A part that is there gets its ":" even behind an empty path.
void appendPart(std::wstring& path, bool& isPresent, const std::wstring* part) {
    if (part != nullptr) {
        path += isPresent ? L":" : L"";
        path += *part;
        isPresent = true;
    }
}

}  // namespace

void addEnvSetToCommandLine(const PropertyList& properties) {
    for (const Property* property : findProperties(L"env.unset", properties)) {
        const std::wstring name = variableName(*property, L"env.unset");
        if (!name.empty()) {
            unsetEnv(name);
        }
    }
    for (const Property* property : findProperties(L"env.set", properties)) {
        const std::wstring name = variableName(*property, L"env.set");
        if (!name.empty()) {
            setEnv(name, property->value, true);
        }
    }
}

void addLibpathToCommandLine(const PropertyList& properties) {
    const std::wstring* internal =
        findProperty(L"com.ovr.rcp.core.internal.librarypath", properties);
    if (internal != nullptr && internal->empty()) {
        internal = nullptr;  // an empty element would be the current directory
    }
    std::wstring path;
    bool isPresent = false;
    appendPart(path, isPresent, findProperty(L"library.path.prepend", properties));
    appendPart(path, isPresent, internal);
    appendPart(path, isPresent, findProperty(L"library.path.append", properties));
    if (isPresent) {
        setEnv(L"DYLD_LIBRARY_PATH", path, true);
    }
}

void addLdPreloadToCommandLine(const PropertyList& properties) {
    const std::wstring* library = findProperty(L"library.preload", properties);
    if (library == nullptr) {
        return;
    }
    const std::wstring* installId = findProperty(L"rcp.install.id", properties);
    if (installId == nullptr) {
        fatal(noReason(), "ZYPRA0034E: Couldn't find the rcp.install.id property!");
    }
    setPreload(*library, *installId);
}

void addEnvJavaHighZipfds(const PropertyList& properties) {
    const std::wstring* value = findProperty(L"env.JAVA_HIGH_ZIPFDS", properties);
    setEnv(L"JAVA_HIGH_ZIPFDS", value == nullptr ? L"500" : *value, true);
}

}  // namespace rcp
