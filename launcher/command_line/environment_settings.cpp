#include "launcher/command_line/environment_settings.h"

#include "diagnostics/svc_debug.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/variables.h"
#include "platform/environment.h"
#include "platform/preload.h"

#include <string>
#include <utility>

namespace rcp {
namespace {

// The NAME of a key prefix.NAME; empty for a key that has none.
std::wstring variableName(const Property& property, Key prefix) {
    const std::wstring& key = property.key;
    if (key.size() <= prefix.size() || key[prefix.size()] != L'.') {
        return {};
    }
    return key.substr(prefix.size() + 1);
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
    for (const Property* property : findProperties(keys::kEnvUnset, properties)) {
        const std::wstring name = variableName(*property, keys::kEnvUnset);
        if (!name.empty()) {
            changes.push_back({.kind = EnvironmentChange::kUnset,
                               .name = name,
                               .value = {},
                               .origin = property->origin});
        }
    }
    for (const Property* property : findProperties(keys::kEnvSet, properties)) {
        const std::wstring name = variableName(*property, keys::kEnvSet);
        if (!name.empty()) {
            changes.push_back({.name = name, .value = property->value, .origin = property->origin});
        }
    }
}

void addLibpathToCommandLine(EnvironmentChanges& changes, const PropertyList& properties) {
    Arguments parts;
    std::wstring path;
    for (const Key key :
         {keys::kLibraryPathPrepend, keys::kInternalLibraryPath, keys::kLibraryPathAppend}) {
        const Property* part = properties.find(key);
        // An empty element of the launcher's own would be the current directory.
        if (part == nullptr || (key == keys::kInternalLibraryPath && part->value.empty())) {
            continue;
        }
        // Behind a part that is there, even an empty one.
        path += parts.empty() ? L"" : L":";
        path += part->value;
        parts.push_back(argumentFrom(*part));
    }
    if (!parts.empty()) {
        const Origin first = parts.front().origin;
        changes.push_back({.name = std::wstring(variables::kLibraryPath),
                           .value = path,
                           .origin = first,
                           .parts = std::move(parts)});
    }
}

void addLdPreloadToCommandLine(EnvironmentChanges& changes, const PropertyList& properties) {
    const Property* library = properties.find(keys::kLibraryPreload);
    if (library == nullptr) {
        return;
    }
    const std::wstring* installId = findProperty(keys::kInstallId, properties);
    if (installId == nullptr) {
        fatal(noReason(), messages.noInstallIdForPreload);
    }
    changes.push_back({.kind = EnvironmentChange::kPreload,
                       .name = *installId,
                       .value = library->value,
                       .origin = library->origin});
}

void addEnvJavaHighZipfds(EnvironmentChanges& changes, const PropertyList& properties) {
    const Property* given = properties.find(keys::kJavaHighZipFds);
    changes.push_back({.name = std::wstring(variables::kJavaHighZipFds),
                       .value = given == nullptr ? defaults::kJavaHighZipFds : given->value,
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
