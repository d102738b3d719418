// Configuration extensions and the arguments that the launcher refuses.
#include "diagnostics/format.h"
#include "inspect/check/groups.h"
#include "inspect/check/launcher_end.h"
#include "launcher/command_line/argument_checks.h"
#include "launcher/command_line/config_extensions.h"
#include "launcher/command_line/initial_configuration.h"

#include <algorithm>
#include <cwchar>

namespace rcp::inspect {
namespace {

constexpr std::wstring_view kPrefix = L"config.";

std::wstring numberedKey(const std::wstring& name, unsigned long number) {
    return std::wstring(kPrefix) + name + L"." + std::to_wstring(number);
}

// The first number from 1 on that the extension has no entry for.
unsigned long firstMissing(const std::wstring& name, const PropertyList& properties) {
    unsigned long number = 1;
    while (findProperty(numberedKey(name, number), properties) != nullptr) {
        ++number;
    }
    return number;
}

void findGap(const Examination& examination, const std::wstring& name, Findings& findings) {
    const PropertyList& properties = examination.inputs.properties;
    const unsigned long missing = firstMissing(name, properties);
    const std::wstring prefix = std::wstring(kPrefix) + name + L".";
    for (const Property& entry : properties.entries()) {
        if (!entry.key.starts_with(prefix)) {
            continue;
        }
        const unsigned long number = std::wcstoul(&entry.key[prefix.size()], nullptr, 10);
        if (number > missing && entry.key == numberedKey(name, number)) {
            findings.add(
                "RI501", examination.nameOf(entry.origin), entry.origin.line,
                "\"" + toUtf8(numberedKey(name, missing)) + "\" is missing in front of it");
        }
    }
}

void findInInitial(const Examination& examination, Findings& findings) {
    const LaunchInputs& inputs = examination.inputs;
    const auto record = endOf([&] { isInitialRequired(inputs); });
    if (!record) {
        return;
    }
    const auto entries = findProperties(L"config.initial.", inputs.properties);
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

void findInExtension(const Examination& examination, const std::wstring& name, Findings& findings) {
    findGap(examination, name, findings);
    PropertyList properties = examination.inputs.properties;
    VmArgumentMap map;
    Arguments extended;
    const Arguments own{examination.arguments.front(), Argument(L"-config"), Argument(name)};
    const auto record = endOf([&] {
        extended = addConfigExtentionsToArg(own, properties, map, examination.inputs.debugFile);
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
    for (const Property& entry : examination.inputs.properties.entries()) {
        const PropertyKey* known = findPropertyKey(entry.key);
        if (known == nullptr || !known->key.starts_with(kPrefix)) {
            continue;
        }
        std::wstring name = entry.key.substr(kPrefix.size());
        const std::size_t restart = name.rfind(L".restartExe.");
        name.resize(restart == std::wstring::npos ? std::min(name.rfind(L'.'), name.size())
                                                  : restart);
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
        }
    }
    return names;
}

void findInExtensions(const Examination& examination, Findings& findings) {
    findRefused(examination, examination.inputs.arguments, findings);
    for (const std::wstring& name : extensionNames(examination)) {
        findInExtension(examination, name, findings);
    }
    findInInitial(examination, findings);
}

}  // namespace rcp::inspect
