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

constexpr std::wstring_view kInternalLibraryPath = L"com.ovr.rcp.core.internal.librarypath";

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
            changes.push_back({.kind = EnvironmentChange::kUnset,
                               .name = name,
                               .value = {},
                               .origin = property->origin});
        }
    }
    for (const Property* property : findProperties(L"env.set", properties)) {
        const std::wstring name = variableName(*property, L"env.set");
        if (!name.empty()) {
            changes.push_back({.name = name, .value = property->value, .origin = property->origin});
        }
    }
}

void addLibpathToCommandLine(EnvironmentChanges& changes, const PropertyList& properties) {
    const Property* first = nullptr;
    std::wstring path;
    for (const std::wstring_view key :
         {std::wstring_view(L"library.path.prepend"), kInternalLibraryPath,
          std::wstring_view(L"library.path.append")}) {
        const Property* part = properties.find(key);
        // An empty element of the launcher's own would be the current directory.
        if (part == nullptr || (key == kInternalLibraryPath && part->value.empty())) {
            continue;
        }
        // Behind a part that is there, even an empty one.
        path += first == nullptr ? L"" : L":";
        path += part->value;
        first = first == nullptr ? part : first;
    }
    if (first != nullptr) {
        changes.push_back({.name = L"DYLD_LIBRARY_PATH", .value = path, .origin = first->origin});
    }
}

void addLdPreloadToCommandLine(EnvironmentChanges& changes, const PropertyList& properties) {
    const Property* library = properties.find(L"library.preload");
    if (library == nullptr) {
        return;
    }
    const std::wstring* installId = findProperty(L"rcp.install.id", properties);
    if (installId == nullptr) {
        fatal(noReason(), messages.noInstallIdForPreload);
    }
    changes.push_back({.kind = EnvironmentChange::kPreload,
                       .name = *installId,
                       .value = library->value,
                       .origin = library->origin});
}

void addEnvJavaHighZipfds(EnvironmentChanges& changes, const PropertyList& properties) {
    const Property* given = properties.find(L"env.JAVA_HIGH_ZIPFDS");
    changes.push_back({.name = L"JAVA_HIGH_ZIPFDS",
                       .value = given == nullptr ? L"500" : given->value,
                       .origin = given == nullptr ? Origin() : given->origin});
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
