#include "launcher/command_line/environment_settings.h"

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

EnvironmentChanges environmentOf(const PropertyList& properties) {
    EnvironmentChanges changes;
    addLibpathToCommandLine(changes, properties);
    addEnvSetToCommandLine(changes, properties);
    addLdPreloadToCommandLine(changes, properties);
    addEnvJavaHighZipfds(changes, properties);
    return changes;
}

void addEnvSetToCommandLine(EnvironmentChanges& changes, const PropertyList& properties) {
    for (const Property* property : findProperties(L"env.unset", properties)) {
        const std::wstring name = variableName(*property, L"env.unset");
        if (!name.empty()) {
            changes.push_back({.kind = EnvironmentChange::kUnset, .name = name, .value = {}});
        }
    }
    for (const Property* property : findProperties(L"env.set", properties)) {
        const std::wstring name = variableName(*property, L"env.set");
        if (!name.empty()) {
            changes.push_back({.name = name, .value = property->value});
        }
    }
}

void addLibpathToCommandLine(EnvironmentChanges& changes, const PropertyList& properties) {
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
        changes.push_back({.name = L"DYLD_LIBRARY_PATH", .value = path});
    }
}

void addLdPreloadToCommandLine(EnvironmentChanges& changes, const PropertyList& properties) {
    const std::wstring* library = findProperty(L"library.preload", properties);
    if (library == nullptr) {
        return;
    }
    const std::wstring* installId = findProperty(L"rcp.install.id", properties);
    if (installId == nullptr) {
        fatal(noReason(), messages.noInstallIdForPreload);
    }
    changes.push_back({.kind = EnvironmentChange::kPreload, .name = *installId, .value = *library});
}

void addEnvJavaHighZipfds(EnvironmentChanges& changes, const PropertyList& properties) {
    const std::wstring* value = findProperty(L"env.JAVA_HIGH_ZIPFDS", properties);
    changes.push_back({.name = L"JAVA_HIGH_ZIPFDS", .value = value == nullptr ? L"500" : *value});
}

void applyEnvironment(const EnvironmentChanges& changes) {
    for (const EnvironmentChange& change : changes) {
        switch (change.kind) {
            case EnvironmentChange::kSet:
                setEnv(change.name, change.value, Overwrite::kYes);
                break;
            case EnvironmentChange::kUnset:
                unsetEnv(change.name);
                break;
            case EnvironmentChange::kPreload:
                setPreload(change.value, change.name);
                break;
        }
    }
}

}  // namespace rcp
