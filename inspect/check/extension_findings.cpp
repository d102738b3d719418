// Configuration extensions and the arguments that the launcher refuses.
#include "diagnostics/format.h"
#include "inspect/check/groups.h"
#include "inspect/check/launcher_end.h"
#include "inspect/suggestions.h"
#include "launcher/command_line/argument_checks.h"
#include "launcher/command_line/config_extensions.h"
#include "launcher/command_line/initial_configuration.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"

#include <algorithm>
#include <cwchar>
#include <map>

namespace rcp::inspect {
namespace {

constexpr Key kPrefix = keys::kExtension;

std::wstring numberedKey(const std::wstring& name, unsigned long number) {
    return keys::extensionArgument(name, number);
}

// The first number from 1 on that the extension has no entry for.
unsigned long firstMissing(const std::wstring& name, const PropertyList& properties) {
    unsigned long number = 1;
    while (findProperty(numberedKey(name, number), properties) != nullptr) {
        ++number;
    }
    return number;
}

void findInInitial(const Examination& examination, Findings& findings) {
    const LaunchInputs& inputs = examination.inputs;
    const auto record = endOf([&] { isInitialRequired(inputs); });
    if (!record) {
        return;
    }
    const auto entries = findProperties(keys::kInitial, inputs.properties);
    const Origin origin = entries.empty() ? Origin() : entries.front()->origin;
    if (record->starts_with("ZYPRA0115E")) {
        findings.add("RI502", examination.nameOf(origin), origin.line, *record);
    } else if (!findings.has("RI501")) {
        findings.add("RI501", examination.nameOf(origin), origin.line, *record);
    }
}

// The record with which a launch with these arguments would end.
std::optional<std::string> refusal(const Arguments& arguments) {
    return endOf([&] {
        validateThatDoubleQuotesNotUsed(arguments);
        validateNoJavaLibraryPath(arguments);
    });
}

void findRefused(const Examination& examination, const Arguments& arguments, Findings& findings) {
    for (const Argument& argument : arguments) {
        if (const auto record = refusal({argument})) {
            findings.add("RI503", examination.nameOf(argument.origin), argument.origin.line,
                         "\"" + toUtf8(argument.text) + "\": " + *record);
        }
    }
}

// "-config NAME" without any entry adds nothing, and nobody says so.
void findUnknown(const Examination& examination, Findings& findings) {
    const Argument* name = optionValue(options::kConfig, examination.arguments);
    if (name == nullptr || name->text.empty()) {
        return;
    }
    std::vector<std::string> known;
    for (const std::wstring& one : extensionNames(examination)) {
        known.push_back(toUtf8(one));
    }
    const std::string given = toUtf8(name->text);
    if (std::find(known.begin(), known.end(), given) == known.end()) {
        findings.add("RI504", examination.launcherFile(), 0,
                     "\"-config " + given + "\" has no entry \"config." + given + ".1\"" +
                         suggestion(given, known));
    }
}

// The name in the key of an extension's entry; empty in others.
std::wstring extensionName(std::wstring_view key) {
    const PropertyKey* known = findPropertyKey(key);
    if (known == nullptr || !known->key.starts_with(kPrefix)) {
        return {};
    }
    const std::wstring_view name = key.substr(kPrefix.size());
    const std::size_t restart = name.rfind(keys::kRestartExecutable);
    return std::wstring(
        name.substr(0, restart == std::wstring_view::npos ? name.rfind(L'.') : restart));
}

void findGap(const Examination& examination, const std::wstring& name, const PropertyList& entries,
             Findings& findings) {
    const unsigned long missing = firstMissing(name, entries);
    const std::size_t numberAt = kPrefix.size() + name.size() + 1;
    for (const Property& entry : entries.entries()) {
        const unsigned long number = std::wcstoul(&entry.key[numberAt], nullptr, 10);
        if (number > missing && entry.key == numberedKey(name, number)) {
            findings.add(
                "RI501", examination.nameOf(entry.origin), entry.origin.line,
                "\"" + toUtf8(numberedKey(name, missing)) + "\" is missing in front of it");
        }
    }
}

// Of the properties an extension looks at its own alone.
void findInExtension(const Examination& examination, const std::wstring& name,
                     PropertyList& entries, Findings& findings) {
    findGap(examination, name, entries, findings);
    VmArgumentMap map;
    Arguments extended;
    const Arguments own{examination.arguments.front(), Argument(options::kConfig), Argument(name)};
    const auto record = endOf([&] {
        extended = addConfigExtentionsToArg(own, entries, map, examination.inputs.debugFile);
    });
    if (record) {
        const Origin origin = examination.originOf(numberedKey(name, 1));
        findings.add("RI503", examination.nameOf(origin), origin.line, *record);
    }
    findRefused(examination, extended, findings);
}

}  // namespace

std::vector<std::wstring> extensionNames(const Examination& examination) {
    std::vector<std::wstring> names;
    std::set<std::wstring> known;
    for (const Property& entry : examination.inputs.properties.entries()) {
        const std::wstring name = extensionName(entry.key);
        if (!name.empty() && known.insert(name).second) {
            names.push_back(name);
        }
    }
    return names;
}

void findInExtensions(const Examination& examination, Findings& findings) {
    findRefused(examination, examination.inputs.arguments, findings);
    std::map<std::wstring, PropertyList> extensions;
    for (const Property& entry : examination.inputs.properties.entries()) {
        if (const std::wstring name = extensionName(entry.key); !name.empty()) {
            extensions[name].append(entry);
        }
    }
    for (auto& [name, entries] : extensions) {
        findInExtension(examination, name, entries, findings);
    }
    findInInitial(examination, findings);
    findUnknown(examination, findings);
}

}  // namespace rcp::inspect
