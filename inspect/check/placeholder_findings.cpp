// Placeholders: each value is expanded by the launcher's own functions, as a launch would do it.
#include "diagnostics/format.h"
#include "inspect/check/groups.h"
#include "inspect/check/launcher_end.h"
#include "inspect/expansion.h"
#include "launcher/properties/placeholders.h"
#include "launcher/user_area/workspace.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/variables.h"

#include <vector>

namespace rcp::inspect {
namespace {

struct Place {
    std::string file;
    std::size_t line = 0;
};

bool isUnclosed(const std::wstring& text) {
    return text.find(placeholders::kOpening) != std::wstring::npos &&
           !findLastPlaceholder(text, std::wstring::npos);
}

// What is left in a text that could not be expanded. When something in it can still be replaced,
// the launcher gave up because it would never have ended.
void findLeft(const std::wstring& text, const PropertyList& properties, const Place& place,
              Findings& findings) {
    std::vector<std::wstring> names;
    std::size_t limit = std::wstring::npos;
    while (const std::optional<Placeholder> last = findLastPlaceholder(text, limit)) {
        const std::wstring name(last->name);
        if (getPlaceholderValue(name, properties)) {
            findings.add("RI303", place.file, place.line,
                         inQuotes(L"${" + name + L"}") + " brings itself back");
            return;
        }
        names.push_back(name);
        if (last->begin == 0) {
            break;
        }
        limit = last->begin - 1;
    }
    for (const std::wstring& left : names) {
        const bool isVariable = left.starts_with(placeholders::kVariable);
        findings.add(
            isVariable ? "RI302" : "RI301", place.file, place.line,
            inQuotes(L"${" + left + L"}") +
                (isVariable ? " is not set here and has no default" : " cannot be resolved"));
    }
}

void findIn(std::wstring text, const PropertyList& properties, const Place& place,
            Findings& findings) {
    if (isUnclosed(text)) {
        findings.add("RI304", place.file, place.line, "in " + inQuotes(text));
    } else if (!replaceUserPlaceholders(text, properties)) {
        findLeft(text, properties, place, findings);
    }
}

Place placeOf(const Examination& examination, const Origin& origin) {
    return {examination.nameOf(origin), origin.line};
}

void findInUserFile(const Examination& examination, const StandardLocations& locations,
                    Findings& findings) {
    for (const Property& entry : examination.inputs.userProperties.entries()) {
        std::wstring text = entry.value;
        replaceStdPlaceholders(locations, text);
        findIn(text, examination.inputs.userProperties, placeOf(examination, entry.origin),
               findings);
    }
}

void findInVmArguments(const Examination& examination, const StandardLocations& locations,
                       Findings& findings) {
    for (const auto& [key, argument] : examination.inputs.vmargMap) {
        std::wstring text = argument.text;
        replaceStdPlaceholders(locations, text);
        findIn(text, examination.inputs.properties, placeOf(examination, argument.origin),
               findings);
    }
}

// Of the standard placeholders only "${rcp.home}" has a meaning while the workspace is looked for.
void findInWorkspace(const Examination& examination, Findings& findings) {
    const LaunchInputs& inputs = examination.inputs;
    const Property* entry = inputs.properties.find(keys::kData);
    if (entry == nullptr) {
        return;
    }
    const Place place = placeOf(examination, entry->origin);
    std::wstring text = entry->value;
    replaceEvery(text, placeholders::kRcpHome, inputs.installDir);
    findIn(text, inputs.properties, place, findings);
    LaunchInputs withoutOptions = inputs;
    withoutOptions.arguments.resize(1);
    const auto record = endOf([&] { (void)getWorkspaceLocation(withoutOptions); });
    if (record && record->starts_with("ZYPRA0099E") && entry->value.empty()) {
        findings.add("RI301", place.file, place.line, *record);
    }
}

// The keys of the workspaces that extensions name, which go through the rule of "-data".
std::set<std::wstring> extensionWorkspaces(const PropertyFile& file) {
    std::set<std::wstring> workspaces;
    for (const Property& entry : file.entries.entries()) {
        if (entry.value == options::kData && entry.key.starts_with(keys::kExtension)) {
            const std::size_t dot = entry.key.rfind(L'.') + 1;
            const unsigned long number = std::wcstoul(&entry.key[dot], nullptr, 10);
            workspaces.insert(entry.key.substr(0, dot) + std::to_wstring(number + 1));
        }
    }
    return workspaces;
}

void findUnexpanded(const PropertyFile& file, const StandardLocations& locations,
                    const std::set<std::wstring>& referred, Findings& findings) {
    const std::set<std::wstring> workspaces = extensionWorkspaces(file);
    for (const Property& entry : file.entries.entries()) {
        const PropertyKey* known = findPropertyKey(entry.key, file.kind);
        if (file.kind == kUserFile || known == nullptr || known->expansion == Expansion::kAll ||
            referred.contains(entry.key) || workspaces.contains(entry.key)) {
            continue;
        }
        const std::wstring text = expanded(entry.value, known->expansion, locations);
        if (const auto last = findLastPlaceholder(text, std::wstring::npos)) {
            findings.add("RI305", file.name, entry.origin.line,
                         inQuotes(L"${" + std::wstring(last->name) + L"}") +
                             " stays as it is in the value of " + inQuotes(entry.key));
        }
    }
}

}  // namespace

void findInPlaceholders(const Examination& examination, Findings& findings) {
    const StandardLocations locations{examination.inputs.workspace, examination.inputs.installDir};
    findInUserFile(examination, locations, findings);
    findInVmArguments(examination, locations, findings);
    findInWorkspace(examination, findings);
    const std::set<std::wstring> referred = referredKeys(examination);
    for (const PropertyFile& file : examination.files) {
        findUnexpanded(file, locations, referred, findings);
    }
}

}  // namespace rcp::inspect
