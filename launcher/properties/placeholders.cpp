#include "launcher/properties/placeholders.h"

#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "launcher/vocabulary/variables.h"
#include "platform/environment.h"
#include "platform/text.h"

#include <utility>

namespace rcp {
namespace {

// No real value comes near these. They end the expansion of values that bring themselves back, and
// bound the time that a hostile one can take.
constexpr int kMostReplacements = 4096;
constexpr std::size_t kLongestGrowth = std::size_t{1024} * 1024;

void turnSlashes(StandardLocations& locations) {
    convertBS2S(locations.workspace);
    convertBS2S(locations.installDir);
}

// What of a text can show in a record. A value that brings itself back is traced thousands of times
// while it grows; all of it each time would take minutes.
std::wstring traced(const std::wstring& text) {
    return debug ? text.substr(0, kRecordLimit) : std::wstring();
}

void traceModification(const std::wstring& before, const std::wstring& after) {
    if (debug) {
        trace(messages.placeholderReplaced, before + L" => " + traced(after));
    }
}

// The copy of a text that an observer is shown when the text itself has changed.
std::wstring observed(std::wstring_view text) {
    return observer == nullptr ? std::wstring() : std::wstring(text);
}

void tellObserver(const std::wstring& before, std::wstring_view placeholder,
                  const std::wstring& value, const std::wstring& after) {
    if (observer != nullptr) {
        observer->placeholderReplaced(before, placeholder, value, after);
    }
}

std::optional<std::wstring> getEnvironmentValue(std::wstring_view rest) {
    const std::size_t comma = rest.find(L',');
    std::optional<std::wstring> value = getEnv(VariableName(rest.substr(0, comma)));
    if (!value && comma != std::wstring_view::npos) {
        value = rest.substr(comma + 1);
    }
    return value;
}

}  // namespace

void replaceEvery(std::wstring& text, std::wstring_view placeholder, const std::wstring& value) {
    std::size_t found = text.find(placeholder);
    if (found == std::wstring::npos) {
        return;
    }
    std::wstring out;
    std::size_t at = 0;
    for (; found != std::wstring::npos; found = text.find(placeholder, at)) {
        out.append(text, at, found - at);
        out += value;
        at = found + placeholder.size();
    }
    out.append(text, at);
    text.swap(out);
    tellObserver(out, placeholder, value, text);
}

void replaceFirst(std::wstring& text, std::wstring_view placeholder, const std::wstring& value) {
    const std::size_t found = text.find(placeholder);
    if (found != std::wstring::npos) {
        const std::wstring before = observed(text);
        text.replace(found, placeholder.size(), value);
        tellObserver(before, placeholder, value, text);
    }
}

void replaceFirstRcpHome(std::wstring& text, const std::wstring& installDir) {
    replaceFirst(text, placeholders::kRcpHome, installDir);
}

void replaceStdPlaceholders(const StandardLocations& locations, std::wstring& text) {
    replaceEvery(text, placeholders::kRcpHome, locations.installDir);
    replaceEvery(text, placeholders::kWorkspaceLocation, locations.workspace);
    replaceEvery(text, placeholders::kRcpData, locations.workspace);
}

std::optional<Placeholder> findLastPlaceholder(std::wstring_view text, std::size_t limit) {
    const std::size_t begin = text.rfind(placeholders::kOpening, limit);
    if (begin == std::wstring_view::npos) {
        return std::nullopt;
    }
    const std::size_t end = text.find(L'}', begin + placeholders::kOpening.size());
    if (end == std::wstring_view::npos) {
        return std::nullopt;
    }
    return Placeholder{begin, end,
                       text.substr(begin + placeholders::kOpening.size(),
                                   end - begin - placeholders::kOpening.size())};
}

std::optional<std::wstring> getPlaceholderValue(std::wstring_view name,
                                                const PropertyList& properties) {
    if (name.starts_with(placeholders::kVariable)) {
        return getEnvironmentValue(name.substr(placeholders::kVariable.size()));
    }
    if (name.starts_with(placeholders::kProperty)) {
        if (const std::wstring* found =
                findProperty(Key(name.substr(placeholders::kProperty.size())), properties)) {
            return *found;
        }
    }
    return std::nullopt;
}

bool replaceUserPlaceholders(std::wstring& text, const PropertyList& properties) {
    const std::size_t longest = text.size() + kLongestGrowth;
    bool allResolved = true;
    std::size_t limit = text.size();
    for (int replacements = 0;; ++replacements) {
        const std::optional<Placeholder> last = findLastPlaceholder(text, limit);
        if (!last) {
            return allResolved;
        }
        if (replacements == kMostReplacements || text.size() > longest) {
            return false;
        }
        limit = last->begin;
        if (const std::optional<std::wstring> value = getPlaceholderValue(last->name, properties)) {
            const std::wstring name = observed(last->name);
            const std::wstring before = observer == nullptr ? traced(text) : text;
            text.replace(last->begin, last->end + 1 - last->begin, *value);
            traceModification(before, text);
            tellObserver(before, name, *value, text);
            limit += value->size();
        } else {
            allResolved = false;
        }
        // The limit is the last character in front of here; there is none at the very start.
        if (limit == 0) {
            return allResolved;
        }
        --limit;
    }
}

bool replaceAllPlaceholders(const StandardLocations& locations, std::wstring& text,
                            const PropertyList& properties) {
    if (text.find(placeholders::kOpening) == std::wstring::npos) {
        return true;
    }
    replaceStdPlaceholders(locations, text);
    std::wstring copy = text;
    if (!replaceUserPlaceholders(copy, properties)) {
        return false;
    }
    text = std::move(copy);
    return true;
}

void refusePlaceholders(const std::wstring& text, const std::wstring& key, const Origin& origin) {
    fatal(noReason().at(placeOf(key, origin)).from(origin), messages.substitutionInvalid, text);
}

void replacePlaceholdersInRcpInstallProp(StandardLocations locations, PropertyList& properties) {
    turnSlashes(locations);
    properties.forEachValue([&](std::wstring& value, const Property& entry) {
        if (!replaceAllPlaceholders(locations, value, properties)) {
            refusePlaceholders(value, entry.key, entry.origin);
        }
    });
}

void replacePlaceholdersInVmargMap(StandardLocations locations, const PropertyList& properties,
                                   VmArgumentMap& vmargMap) {
    turnSlashes(locations);
    for (auto& [key, argument] : vmargMap) {
        if (!replaceAllPlaceholders(locations, argument.text, properties)) {
            refusePlaceholders(argument.text, key, argument.origin);
        }
    }
}

void replacePlaceholdersInArgv(StandardLocations locations, Arguments& arguments) {
    turnSlashes(locations);
    for (Argument& argument : arguments) {
        replaceStdPlaceholders(locations, argument.text);
    }
}

}  // namespace rcp
