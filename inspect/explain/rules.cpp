#include "inspect/explain/rules.h"

#include "diagnostics/format.h"
#include "inspect/property_keys.h"
#include "launcher/command_line/whys.h"
#include "launcher/inputs/option_values.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

struct Sentence {
    std::wstring_view text;
    const char* rule;
};

struct OptionProperty {
    std::wstring_view option;
    std::wstring_view property;
};
constexpr OptionProperty kOptionProperties[] = {
    {L"-data", L"rcp.data"},
    {L"-application", L"application"},
    {L"-plugincustomization", L"plugincustomization"},
    {L"-product", L"product"},
    {L"-personality", L"personality"},
    {L"-vm", L"jvm.location"},
    {L"-vm", L"vm"},
};

// What the launcher takes out of its arguments before it assembles anything.
constexpr Sentence kDroppedEarly[] = {
    {L"-config", "stands for the arguments of a configuration extension"},
    {L"-vmargs", "becomes the launcher's own -vmargs"},
};
constexpr char kExtensionName[] = "names the configuration extension";

const char* droppedEarly(std::wstring_view argument) {
    for (const Sentence& sentence : kDroppedEarly) {
        if (sentence.text == argument) {
            return sentence.rule;
        }
    }
    return nullptr;
}

bool isBehindVmargs(const Arguments& elements, std::size_t index) {
    const auto end = elements.begin() + static_cast<std::ptrdiff_t>(index);
    return std::find(elements.begin(), end, L"-vmargs") != end;
}

std::string ruleForVmarg(const std::wstring& name) {
    return "JVM argument " + toUtf8(name.substr(name.find(L'.') + 1)) +
           "; in the order of the names";
}

std::string ruleForProperty(const Property& entry) {
    const std::string key = toUtf8(entry.key);
    if (entry.key.starts_with(L"config.")) {
        return "the configuration extension puts it in: " + key;
    }
    const PropertyKey* known = findPropertyKey(entry.key);
    return known == nullptr ? "property " + key : known->usage;
}

bool isRepeated(const Arguments& arguments, std::size_t position) {
    const auto end = arguments.begin() + static_cast<std::ptrdiff_t>(position);
    return std::find(arguments.begin() + 1, end, arguments[position]) != end;
}

}  // namespace

std::vector<std::wstring_view> propertiesFor(std::wstring_view option) {
    std::vector<std::wstring_view> properties;
    for (const OptionProperty& pair : kOptionProperties) {
        if (pair.option == option) {
            properties.push_back(pair.property);
        }
    }
    return properties;
}

std::wstring_view optionFor(std::wstring_view property) {
    for (const OptionProperty& pair : kOptionProperties) {
        if (pair.property == property) {
            return pair.option;
        }
    }
    return {};
}

std::string ruleFor(const Arguments& elements, std::size_t index, const Property* entry,
                    const std::wstring& vmarg) {
    const Argument& element = elements[index];
    if (!vmarg.empty()) {
        return ruleForVmarg(vmarg);
    }
    if (element.why != nullptr) {
        return element.why->text;
    }
    if (entry != nullptr) {
        return ruleForProperty(*entry);
    }
    if (element.origin.isCommandLine()) {
        return isBehindVmargs(elements, index) ? "the user's JVM argument"
                                               : "the user's argument, passed on as it is";
    }
    return "appended to the arguments by the launcher";
}

std::string whyDropped(const Arguments& arguments, std::size_t position, const Argument* dropped,
                       bool isInitial) {
    const Argument& argument = arguments[position];
    const std::wstring_view before =
        position > 1 ? std::wstring_view(arguments[position - 1].text) : std::wstring_view();
    const bool isData = argument == L"-data" || before == L"-data";
    if (isInitial && !isData && argument != L"-vm") {
        return "the initial configuration is started instead";
    }
    if (dropped != nullptr) {
        return dropped->why->text;
    }
    if (before == L"-config" && canBeValue(argument)) {
        return kExtensionName;
    }
    if (const char* early = droppedEarly(argument.text)) {
        return early;
    }
    if (argument.text.starts_with(L"vmarg.")) {
        return "an earlier one of its name is already there";
    }
    const bool repeats = isRepeated(arguments, position);
    if (!repeats && (position == 1 || !isRepeated(arguments, position - 1))) {
        return "another command line is started instead";
    }
    const Argument& option = repeats ? argument : arguments[position - 1];
    return option == L"-data" || option == L"-vm" ? whys::kRepeats.text : "repeats an option";
}

}  // namespace rcp::inspect
