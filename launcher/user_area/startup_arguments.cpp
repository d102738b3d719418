#include "launcher/user_area/startup_arguments.h"

#include "diagnostics/svc_debug.h"
#include "launcher/inputs/option_values.h"
#include "launcher/properties/java_properties.h"
#include "launcher/properties/placeholders.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/paths.h"
#include "launcher/vocabulary/variables.h"
#include "platform/environment.h"
#include "platform/install_location.h"
#include "platform/text.h"
#include "platform/whole_file.h"

#include <errno.h>

#include <vector>

namespace rcp {
namespace {

// The three write failures carry one text under three ids, so that the id tells which line failed. The
// lines of an ordinary launch fit one write, whose failure shows with the last of them.
struct Line {
    std::string text;
    Message<Text> failed;  // the message when it cannot be written
};

Line makeLine(Key key, const std::wstring& value, Message<Text> failed) {
    return {propertyLines(toNarrow(std::wstring(key)), toNarrow(convWcharTo8859_1_Value(value))),
            failed};
}

std::wstring programPath(const std::optional<std::wstring>& restartExe) {
    if (restartExe && !restartExe->empty()) {
        return *restartExe;
    }
    return getLauncherPath();
}

// The workspace as the restarted launcher must find it, whatever its working directory.
std::wstring absoluteWorkspace(const Argument& argument, const PropertyList& properties,
                               const std::wstring& installDir) {
    std::wstring value = argument.text;
    replaceFirstRcpHome(value, installDir);
    const std::wstring before = value;
    if (!replaceUserPlaceholders(value, properties)) {
        refusePlaceholders(before, std::wstring(options::kData), argument.origin);
    }
    return convert_from_relative_location(value, argument.origin);
}

// The arguments to record, in order.
std::vector<std::wstring> recordedArguments(const Arguments& arguments,
                                            const std::optional<std::wstring>& restartExe,
                                            const PropertyList& properties,
                                            const std::wstring& installDir) {
    const auto restart = findOption(options::kRestart, arguments);
    const auto resetConfig = findOption(options::kResetConfig, arguments);
    const auto oldPid = findOption(options::kOldPid, arguments);
    const Argument* data = optionValue(options::kData, arguments);
    std::vector<std::wstring> recorded{programPath(restartExe)};
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const Argument& argument = arguments[i];
        if (i == restart || i == resetConfig) {
            continue;
        }
        if (i == oldPid) {
            i += optionValue(options::kOldPid, arguments) == nullptr ? 0 : 1;
        } else if (i + 1 < arguments.size() && lacksValue(arguments, i)) {
            continue;  // a restart would take the launcher's own "-vm" behind it for its value
        } else if (&argument == data) {
            recorded.push_back(absoluteWorkspace(argument, properties, installDir));
        } else {
            recorded.push_back(argument.text);
        }
    }
    return recorded;
}

std::vector<Line> makeLines(const std::vector<std::wstring>& recorded) {
    std::vector<Line> lines;
    for (std::size_t i = 0; i < recorded.size(); ++i) {
        lines.push_back(makeLine(keys::kArgument + std::to_wstring(i), recorded[i],
                                 messages.argumentNotRecorded));
    }
    lines.push_back(makeLine(keys::kArgumentCount, std::to_wstring(recorded.size()),
                             messages.countNotRecorded));
    const std::wstring libraryPath = getEnv(variables::kLibraryPath).value_or(L"");
    lines.push_back(
        makeLine(keys::kInternalLibraryPath, libraryPath, messages.libraryPathNotRecorded));
    return lines;
}

std::string textOf(const std::vector<Line>& lines) {
    std::string text;
    for (const Line& line : lines) {
        text += line.text;
    }
    return text;
}

}  // namespace

std::optional<std::string> writeStartupArgs(const Arguments& arguments,
                                            const std::wstring& configuration,
                                            const std::optional<std::wstring>& restartExe,
                                            const PropertyList& properties,
                                            const std::wstring& installDir) {
    const std::wstring path = osPath(configuration + L"/" + paths::kArguments);
    const std::vector<Line> lines =
        makeLines(recordedArguments(arguments, restartExe, properties, installDir));
    if (std::string text = textOf(lines); holdsText(path, text)) {
        return text;
    }
    WholeFile file(path);
    if (!file.open()) {
        fatal(because(errno), messages.argsFileNotOpened, path);
    }
    for (const Line& line : lines) {
        if (!file.write(line.text)) {
            fatal(because(errno), line.failed, path);
        }
    }
    if (!file.commit()) {
        fatal(because(errno), messages.libraryPathNotRecorded, path);
    }
    return std::nullopt;
}

}  // namespace rcp
