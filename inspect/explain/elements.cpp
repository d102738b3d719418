// The final argument list with the reason of every element, and what is not in it.
#include "diagnostics/format.h"
#include "diagnostics/whys.h"
#include "inspect/explain/account.h"
#include "launcher/vocabulary/property_keys.h"
#include "platform/text.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

using nlohmann::json;

constexpr Key kVmarg = keys::kVmarg;

// The text from which something was made, before any placeholder was replaced.
std::wstring writtenText(const std::wstring& made, const Origin& origin, const Account& account) {
    const Arguments& given = account.launch.arguments;
    const Property* entry = account.sources.entryAt(origin);
    return entry != nullptr         ? entry->value
           : origin.isCommandLine() ? given[origin.line].text
                                    : made;
}

// An argument "vmarg.NAME=VALUE" is a JVM argument VALUE, but is passed on as it stands too.
std::wstring withoutName(const std::wstring& written, const std::wstring& made) {
    const bool hasName = written.starts_with(kVmarg) && !made.starts_with(kVmarg);
    return hasName ? written.substr(written.find(L'=') + 1) : written;
}

// By which rule the launcher has put it in; of what just comes from a property, what that is for.
std::string ruleFor(const Argument& element, const Account& account) {
    const Property* entry = account.sources.entryAt(element.origin);
    std::wstring name =
        entry != nullptr ? entry->key : writtenText(element.text, element.origin, account);
    if (element.why == &whys::kJvmArgument) {
        name = name.substr(kVmarg.size(), name.find(L'=') - kVmarg.size());
    }
    const std::string narrow = toUtf8(name);
    if (element.why != nullptr) {
        const FormatArgument arguments[] = {std::string_view(narrow)};
        return expandFormat(element.why->text, arguments);
    }
    const PropertyKey* known = entry == nullptr ? nullptr : findPropertyKey(entry->key);
    return known == nullptr ? "property " + narrow : known->usage;
}

json describePlaceholders(const std::wstring& written, const Witness& witness) {
    json placeholders = json::array();
    for (const Replacement& replacement : witness.replacementsFrom(written)) {
        placeholders.push_back({{"name", jsonText(replacement.placeholder)},
                                {"value", jsonText(replacement.value)},
                                {"after", jsonText(replacement.after)}});
    }
    return placeholders;
}

json describeLosers(const Argument& element, const Account& account) {
    json losers = json::array();
    const std::wstring winner = writtenText(element.text, element.origin, account);
    for (const Loser* loser : account.losers.beatenBy(element.origin)) {
        const std::wstring written = writtenText(loser->text, loser->origin, account);
        if (element == written || winner == written) {
            continue;  // an option's name, or the same once more: it says nothing
        }
        losers.push_back({{"text", jsonText(withoutName(written, L""))},
                          {"source", account.sources.describe(loser->origin)},
                          {"why", loser->why->text}});
    }
    return losers;
}

json describeElement(const Argument& element, const Account& account) {
    const std::wstring written = writtenText(element.text, element.origin, account);
    return {
        {"text", jsonText(element.text)},
        {"rule", ruleFor(element, account)},
        {"source", account.sources.describe(element.origin)},
        {"placeholders", describePlaceholders(withoutName(written, element.text), account.witness)},
        {"instead", describeLosers(element, account)}};
}

}  // namespace

std::vector<std::size_t> elementsFrom(const Origin& origin, const Account& account) {
    const Arguments& elements = account.line.arguments();
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (elements[i].origin == origin) {
            found.push_back(i);
        }
    }
    return found;
}

json describeElements(const Account& account) {
    json elements = json::array();
    for (const Argument& element : account.line.arguments()) {
        elements.push_back(describeElement(element, account));
    }
    return elements;
}

// Of the argument that names the workspace only elements of the launcher's own are made.
json describeDropped(const Account& account) {
    json dropped = json::array();
    for (const Argument& argument : account.launch.arguments) {
        const Origin& origin = argument.origin;
        const bool isPassedOn = !elementsFrom(origin, account).empty() &&
                                origin != account.launch.inputs.workspaceOrigin;
        const Loser* loser = account.losers.from(origin);
        if (origin.isCommandLine() && loser != nullptr && !isPassedOn &&
            !account.line.arguments().empty()) {
            dropped.push_back({{"position", origin.line},
                               {"text", jsonText(argument.text)},
                               {"why", loser->why->text}});
        }
    }
    return dropped;
}

}  // namespace rcp::inspect
