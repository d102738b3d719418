// The JVM's arguments as the launcher puts them together.
#include "diagnostics/format.h"
#include "inspect/check/groups.h"
#include "inspect/check/jvm_options.h"
#include "inspect/check/launcher_end.h"
#include "launcher/command_line/plan.h"
#include "launcher/command_line/vm_arguments.h"
#include "launcher/properties/placeholders.h"
#include "launcher/vocabulary/options.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace rcp::inspect {
namespace {

// The final JVM arguments; what cannot be expanded is left out, it has a finding of its own.
Arguments jvmArguments(const Examination& examination) {
    LaunchInputs inputs = examination.inputs;
    const StandardLocations locations{inputs.workspace, inputs.installDir};
    for (auto& [key, argument] : inputs.vmargMap) {
        std::wstring text = argument.text;
        const bool resolved = replaceAllPlaceholders(locations, text, inputs.properties);
        argument = Argument(resolved ? text : std::wstring(), argument.origin);
    }
    CommandLine line;
    endOf([&] {
        addVmargsToCommandLine(line, inputs, JvmFile::kProgram);
        addDashDToCommandLine(line, inputs);
    });
    addXargsToCommandLine(line, inputs.properties);
    Arguments arguments = line.arguments();
    std::erase_if(arguments, [](const Argument& one) { return one == options::kVmargs; });
    return arguments;
}

std::string atLine(const Examination& examination, const Argument& argument) {
    if (!argument.origin.file) {
        return {};
    }
    return " (" + examination.nameOf(argument.origin) + ", line " +
           std::to_string(argument.origin.line) + ")";
}

void add(const Examination& examination, const char* code, const Argument& argument,
         const std::string& message, Findings& findings) {
    findings.add(code, examination.nameOf(argument.origin), argument.origin.line, message);
}

void findHeapSizes(const Examination& examination, const Arguments& arguments, Findings& findings) {
    const Argument* start = lastHeapSize(HeapSize::kStart, arguments);
    const Argument* limit = lastHeapSize(HeapSize::kLimit, arguments);
    if (start != nullptr && limit != nullptr && heapBytes(start->text) > heapBytes(limit->text)) {
        add(examination, "RI401", *start,
            inQuotes(start->text) + " is more than " + inQuotes(limit->text) +
                atLine(examination, *limit),
            findings);
    }
}

void findCollectors(const Examination& examination, const Arguments& arguments,
                    Findings& findings) {
    const std::vector<const Argument*> chosen = chosenCollectors(arguments);
    for (std::size_t i = 1; i < chosen.size(); ++i) {
        add(examination, "RI402", *chosen[i],
            inQuotes(chosen[i]->text) + " and " + inQuotes(chosen.front()->text) +
                atLine(examination, *chosen.front()),
            findings);
    }
}

void findRepetitions(const Examination& examination, const Arguments& arguments,
                     Findings& findings) {
    std::map<std::wstring, const Argument*> last;
    for (const Argument& argument : arguments) {
        const std::wstring name = jvmOptionName(argument.text);
        if (name.empty()) {
            continue;
        }
        const Argument*& former = last[name];
        if (former != nullptr && *former != argument) {
            const Argument& place = former->origin.file ? *former : argument;
            add(examination, "RI403", place,
                inQuotes(former->text) + " loses against " + inQuotes(argument.text) +
                    atLine(examination, argument),
                findings);
        }
        former = &argument;
    }
}

// Options of the program java, unlike its library's, that have their value behind them.
constexpr std::wstring_view kValuedOptions[] = {
    L"--add-exports",   L"--add-modules",        L"--add-opens", L"--add-reads",
    L"--limit-modules", L"--module-path",        L"-p",          L"--patch-module",
    L"--class-path",    L"--upgrade-module-path"};

void findTexts(const Examination& examination, const Arguments& arguments, Findings& findings) {
    const bool isJava = examination.inputs.traits.isDirectJavaShape();
    bool isValue = false;
    for (const Argument& argument : arguments) {
        if (argument.origin.file && !argument.text.starts_with(L'-') && !isValue) {
            add(examination, "RI404", argument, inQuotes(argument.text) + " is no option",
                findings);
        }
        isValue = isJava && std::find(std::begin(kValuedOptions), std::end(kValuedOptions),
                                      argument.text) != std::end(kValuedOptions);
    }
}

void findLosers(const Examination& examination, Findings& findings) {
    for (const PropertyFile& file : examination.files) {
        for (const Property& entry : file.entries.entries()) {
            const auto winner = examination.inputs.vmargMap.find(entry.key);
            if (!file.isRead || winner == examination.inputs.vmargMap.end()) {
                continue;
            }
            const Origin& origin = winner->second.origin;
            const bool isSwitchedOff =
                winner->second.text.empty();  // nobody writes that by mistake
            if (!isSwitchedOff && origin.file && examination.nameOf(origin) != file.name) {
                findings.add("RI405", file.name, entry.origin.line,
                             inQuotes(entry.key) + " in " + examination.nameOf(origin) + ", line " +
                                 std::to_string(origin.line) + ", always wins");
            }
        }
    }
}

}  // namespace

void findInJvmArguments(const Examination& examination, Findings& findings) {
    const Arguments arguments = jvmArguments(examination);
    findHeapSizes(examination, arguments, findings);
    findCollectors(examination, arguments, findings);
    findRepetitions(examination, arguments, findings);
    findTexts(examination, arguments, findings);
    findLosers(examination, findings);
}

}  // namespace rcp::inspect
