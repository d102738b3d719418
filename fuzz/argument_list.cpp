// The argument list: configuration extensions, platform options, JVM arguments.
//
// Input: the number of the launcher's own arguments, those arguments, then the extension's values
// as config.x.1, config.x.2, ... An empty value is a property with an empty value.
#include "diagnostics/whys.h"
#include "fuzz/fuzz.h"
#include "launcher/command_line/config_extensions.h"
#include "launcher/command_line/main_options.h"
#include "launcher/command_line/plan.h"
#include "launcher/command_line/vm_arguments.h"
#include "launcher/inputs/install_configuration.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>

namespace {

using namespace rcp;
using rcp::fuzz::require;

using Counts = std::map<std::wstring, std::size_t>;

Counts countsOf(const Arguments& arguments) {
    Counts counts;
    for (const Argument& argument : arguments) {
        ++counts[argument.text];
    }
    return counts;
}

bool isSubsequence(const Arguments& part, const Arguments& whole) {
    auto at = whole.begin();
    for (const Argument& argument : part) {
        at = std::find(at, whole.end(), argument);
        if (at == whole.end()) {
            return false;
        }
        ++at;
    }
    return true;
}

// Of these a repetition may go, the first ones' with the argument behind it. Written down here: the
// launcher's own lists are what is examined.
constexpr std::wstring_view kStandOnce[] = {
    L"-vm",          L"-data",    L"-plugincustomization",
    L"-application", L"-product", L"-personality",
    L"-nl",          L"-dir",     L"-console",
    L"-debug",       L"-pb4l",
};

bool mayHaveRepetitions(const Arguments& arguments) {
    return std::any_of(std::begin(kStandOnce), std::end(kStandOnce), [&](std::wstring_view one) {
        return std::count(arguments.begin(), arguments.end(), one) > 1;
    });
}

// The extension's values up to the first that is missing; empty ones count for nothing.
Arguments usedValues(const Arguments& values) {
    Arguments used;
    std::copy_if(values.begin(), values.end(), std::back_inserter(used),
                 [](const Argument& value) { return !value.text.empty(); });
    return used;
}

void checkExtension(const Arguments& arguments, const Arguments& values,
                    const Arguments& extended) {
    require(!extended.empty() && extended[0] == arguments[0], "the program stays in front");
    const auto config =
        std::find(arguments.begin() + 1, arguments.end(), options::kConfig) - arguments.begin();
    const Argument* name = optionValue(options::kConfig, arguments);
    if (name == nullptr) {
        require(extended == arguments, "without an extension the arguments stay");
        return;
    }
    Arguments own = arguments;
    own.erase(own.begin() + config, own.begin() + config + 2);
    const Arguments added = *name == L"x" ? usedValues(values) : Arguments();
    Arguments both = own;
    both.insert(both.end(), added.begin(), added.end());
    const Counts most = countsOf(both);
    for (const auto& [argument, count] : countsOf(extended)) {
        const auto found = most.find(argument);
        require(found != most.end() && count <= found->second, "no argument comes from nowhere");
    }
    if (mayHaveRepetitions(both)) {
        return;
    }
    const bool hasSeparator = hasOption(options::kVmargs, own);
    const auto dropped =
        hasSeparator ? std::count(added.begin(), added.end(), options::kVmargs) : 0;
    require(extended.size() == both.size() - static_cast<std::size_t>(dropped),
            "no argument is lost");
    require(isSubsequence(own, extended), "the launcher's own arguments keep their order");
}

// Arguments that are nobody's option nor value and stand in front of "-vmargs" are all handed on.
void checkMainOptions(const Arguments& launchArgs, const LaunchInputs& inputs) {
    Arguments plain;
    for (std::size_t i = 1; i < inputs.arguments.size() && inputs.arguments[i] != options::kVmargs;
         ++i) {
        const bool isBehindOption = inputs.arguments[i - 1].text.starts_with(L"-");
        if (!inputs.arguments[i].text.starts_with(L"-") && (i == 1 || !isBehindOption)) {
            plain.push_back(inputs.arguments[i]);
        }
    }
    require(isSubsequence(plain, launchArgs), "every argument of the user's is handed on");
    const auto data = std::find(launchArgs.rbegin(), launchArgs.rend(), inputs.workspace);
    require(data != launchArgs.rend(), "the workspace is handed on");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Fields fields(data, size);
    const std::size_t count = fields.number() % 16;
    const std::vector<std::wstring> texts = fields.texts();
    const Arguments all(texts.begin(), texts.end());
    const auto split = all.begin() + static_cast<std::ptrdiff_t>(std::min(count, all.size()));
    Arguments arguments = {L"/rcp/rcplauncher"};
    arguments.insert(arguments.end(), all.begin(), split);
    const Arguments values(split, all.end());

    LaunchInputs inputs;
    inputs.workspace = L"/home/ann/workspace";
    inputs.configuration = L"/home/ann/workspace/.config";
    inputs.installDir = L"/nowhere";
    inputs.properties.append({std::wstring(keys::kInstallId), L"abc123", {}});
    inputs.properties.append({std::wstring(keys::kPluginCustomization), L"/dev/null", {}});
    for (std::size_t i = 0; i < values.size(); ++i) {
        inputs.properties.append({keys::extensionArgument(L"x", i + 1), values[i].text, {}});
    }
    inputs.traits.eConfig = installConfigurationOf(inputs.properties);
    const bool ended = fuzz::endsLaunch([&] {
        inputs.arguments = addConfigExtentionsToArg(arguments, inputs.properties, inputs.vmargMap,
                                                    inputs.debugFile);
    });
    if (ended) {
        const auto isVmarg = [](const Argument& one) { return one.text.starts_with(keys::kVmarg); };
        require(std::any_of(all.begin(), all.end(), isVmarg), "only a bad vmarg ends the launch");
        return 0;
    }
    checkExtension(arguments, values, inputs.arguments);

    CommandLine line(isRestart(inputs.arguments) ? Start::kRestart : Start::kOrdinary);
    line.setProgram(L"/eclipse", whys::kPlatformProgram);
    addMainOptionsToCommandLine(line, inputs);
    checkMainOptions(line.arguments(), inputs);
    addVmargsToCommandLine(line, inputs, JvmFile::kEeOrDll);
    addDashDToCommandLine(line, inputs);
    addXargsToCommandLine(line, inputs.properties);
    const Arguments& launchArgs = line.arguments();
    require(launchArgs.front() == L"/eclipse", "the program is the first element");
    require(launchArgs.size() <= inputs.arguments.size() + inputs.vmargMap.size() + 20,
            "the list has a bound");
    for (const auto& [key, argument] : inputs.vmargMap) {
        require(argument.text.empty() || argument == options::kDebug ||
                    argument == options::kConsole || hasOption(argument.text, launchArgs),
                "no JVM argument is lost");
    }
    return 0;
}
