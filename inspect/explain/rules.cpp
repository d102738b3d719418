#include "inspect/explain/rules.h"

#include "diagnostics/format.h"
#include "inspect/property_keys.h"
#include "launcher/command_line/plan.h"
#include "launcher/inputs/option_values.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

struct Sentence {
    std::wstring_view text;  // of the option, or what the element begins with
    const char* rule;
};

// What the launcher writes by itself.
constexpr Sentence kOwnWords[] = {
    {L"-nosplash", "a plain Java command line shows no splash screen"},
    {L"--launcher.suppressErrors", "the platform's program shows no error windows unless traced"},
    {L"-data", "the workspace, always the launcher's own"},
    {L"-configuration", "the configuration area, always the launcher's own"},
    {L"-application", "the application, because the arguments name none"},
    {L"-plugincustomization", "the plug-in preferences, because the arguments name none"},
    {L"-product", "the product, because the arguments name none"},
    {L"-personality", "the personality, because the arguments name none"},
    {L"-userProvLaunch", "this provisioning was started by the user's launch"},
    {L"-vm", "the JVM"},
    {L"-useDaemon", "a platform runs already: its process id"},
    {L"-startup", "the start-up jar"},
    {L"-vmargs", "what follows is the JVM's"},
    {L"-cp", "the class path"},
    {L"org.eclipse.core.launcher.Main", "the main class of a plain Java command line"},
    {L"-Xshareclasses=none", "no shared classes while provisioning"},
    {L"-Dfile.encoding=UTF-8", "the platform's texts are UTF-8, whatever the locale says"},
    {L"-XstartOnFirstThread", "the JVM's first thread is the one that the window system wants"},
};

constexpr Sentence kOwnDefinitions[] = {
    {L"-Drcp.home=", "tells the platform the installation directory"},
    {L"-Drcp.data=", "tells the platform the workspace"},
    {L"-Dosgi.splashPath=", "tells the platform its splash screen"},
    {L"-Dcom.ovr.rcp.install.id=", "tells the platform which installation this is"},
    {L"-Drcp.install.config=", "tells the platform the kind of installation"},
    {L"-Drcp.osgi.install.area=", "tells the platform where its plug-ins are"},
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

// Why the launcher keeps an option of its own to itself.
constexpr Sentence kDroppedOptions[] = {
    {L"-config", "stands for the arguments of a configuration extension"},
    {L"-data", "becomes the launcher's own -data"},
    {L"-configuration", "the configuration area is always the launcher's own"},
    {L"-vm", "becomes the launcher's own -vm"},
    {L"-vmargs", "becomes the launcher's own -vmargs"},
    {L"-rcp_old_pid", "names the process whose end the launcher waits for"},
    {L"-restart", "tells the launcher that its platform is started anew"},
    {L"-resetconfig", "asks the launcher for a new configuration area"},
};

// The same for the values behind them.
constexpr Sentence kDroppedValues[] = {
    {L"-config", "names the configuration extension"},
    {L"-data", "becomes the launcher's own -data"},
    {L"-configuration", "the configuration area is always the launcher's own"},
    {L"-vm", "becomes the launcher's own -vm"},
    {L"-rcp_old_pid", "the process whose end the launcher waits for"},
};

template <typename Table>
const char* exactly(const Table& table, std::wstring_view text) {
    for (const auto& sentence : table) {
        if (sentence.text == text) {
            return sentence.rule;
        }
    }
    return nullptr;
}

template <typename Table>
const char* byBeginning(const Table& table, std::wstring_view text) {
    for (const auto& sentence : table) {
        if (text.starts_with(sentence.text)) {
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

std::string ruleForProperty(const Argument& element, const Property& entry) {
    const std::string key = toUtf8(entry.key);
    if (entry.key.starts_with(L"config.")) {
        return "the configuration extension puts it in: " + key;
    }
    if (const char* rule = byBeginning(kOwnDefinitions, element)) {
        return rule;
    }
    const PropertyKey* known = findPropertyKey(entry.key);
    return known == nullptr ? "property " + key : known->usage;
}

std::string ruleForCommandLine(const Arguments& elements, std::size_t index) {
    const Argument& before = elements[index - 1];
    if (before == L"-vm" && before.origin.line == 0) {
        return "the JVM that the user names with -vm";
    }
    if (before == L"-startup" && before.origin.line == 0) {
        return "the start-up jar that the user names with -perfJar";
    }
    return isBehindVmargs(elements, index) ? "the user's JVM argument"
                                           : "the user's argument, passed on as it is";
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
    if (index == 0) {
        return entry != nullptr && entry->key == L"rcp.base.location"
                   ? "what is started: below the base location the program that eclipse.name "
                     "names, or \"eclipse\""
                   : "what is started: the JVM itself";
    }
    if (!vmarg.empty()) {
        return ruleForVmarg(vmarg);
    }
    const Argument& element = elements[index];
    if (entry != nullptr && entry->key == L"rcp.base.location") {
        const char* option = exactly(kOwnWords, elements[index - 1]);
        return std::string(option == nullptr ? "a file" : option) + ", below the base location";
    }
    if (entry != nullptr) {
        return ruleForProperty(element, *entry);
    }
    if (element.origin.file) {
        return "while this file exists every launch is a debugging one";
    }
    if (element.origin.line > 0) {
        return ruleForCommandLine(elements, index);
    }
    if (const char* rule = byBeginning(kOwnDefinitions, element)) {
        return rule;
    }
    // A value says what its option says.
    const char* option = exactly(kOwnWords, elements[index - 1]);
    const char* own = exactly(kOwnWords, element);
    if (own != nullptr) {
        return own;
    }
    return option == nullptr ? "appended to the arguments by the launcher" : option;
}

std::string whyDropped(const Arguments& arguments, std::size_t position, bool isInitial) {
    const Argument& argument = arguments[position];
    const std::wstring_view before =
        position > 1 ? std::wstring_view(arguments[position - 1]) : std::wstring_view();
    const char* asOption = exactly(kDroppedOptions, argument);
    const char* asValue = canBeValue(argument) ? exactly(kDroppedValues, before) : nullptr;
    const bool lacksItsValue =
        exactly(kDroppedValues, argument) != nullptr && asValue == nullptr &&
        (position + 1 == arguments.size() || !canBeValue(arguments[position + 1]));
    const bool isData = argument == L"-data" || before == L"-data";
    if (isInitial && !isData && argument != L"-vm") {
        return "the initial configuration is started instead";
    }
    const std::size_t option = asValue == nullptr ? position : position - 1;
    const bool isTaken = asValue != nullptr || asOption != nullptr;
    if (isTaken && !propertiesFor(arguments[option]).empty() && isRepeated(arguments, option)) {
        return "repeats an option; the first one counts";
    }
    if (lacksItsValue) {
        return "has no value";
    }
    if (asValue != nullptr) {
        return asValue;
    }
    if (asOption != nullptr) {
        return asOption;
    }
    if (argument.starts_with(L"vmarg.")) {
        return "an earlier one of its name is already there";
    }
    if (isRestart(arguments) && (argument == DEBUGARG || argument == CONSOLEARG)) {
        return "a restarted platform gets no debug console";
    }
    return isRepeated(arguments, position) || (position > 1 && isRepeated(arguments, position - 1))
               ? "repeats an option"
               : "another command line is started instead";
}

}  // namespace rcp::inspect
