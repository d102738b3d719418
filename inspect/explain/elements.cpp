// The final argument list with the reason of every element, and what is not in it.
#include "inspect/explain/account.h"
#include "inspect/explain/contest.h"
#include "inspect/explain/rules.h"
#include "platform/text.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

using nlohmann::json;

constexpr std::wstring_view kVmarg = L"vmarg.";

// The text from which an element was made, before any placeholder was replaced.
std::wstring writtenText(const Argument& element, const Origin& origin, const Property* entry,
                         const Arguments& arguments) {
    if (entry != nullptr) {
        return entry->value;
    }
    const bool isGiven = !origin.file && origin.line > 0 && origin.line < arguments.size();
    return isGiven ? arguments[origin.line].text : element.text;
}

// "vmarg.NAME" of an element that is a JVM argument of that name, wherever it was given: an argument
// "vmarg.NAME=VALUE" is passed on as it stands too.
std::wstring vmargName(const Argument& element, const Property* entry,
                       const std::wstring& written) {
    if (entry != nullptr && entry->key.starts_with(kVmarg)) {
        return entry->key;
    }
    const bool isMade = written.starts_with(kVmarg) && !element.text.starts_with(kVmarg);
    return isMade ? written.substr(0, written.find(L'=')) : std::wstring();
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

bool isWorkspacePath(std::size_t index, const Account& account) {
    const Arguments& elements = account.line.arguments();
    const Argument& element = elements[index];
    if (index == 0 || element.origin.line != 0 || element.origin.file) {
        return false;
    }
    const Argument& before = elements[index - 1];
    return before == L"-data" || before == L"-configuration" ||
           element.text.starts_with(L"-Drcp.data=");
}

// The workspace, what is made of it and the kind of installation are computed; the user wants to
// know from what.
Origin originAt(std::size_t index, const Account& account) {
    const Argument& element = account.line.arguments()[index];
    const bool isComputed = !element.origin.file && element.origin.line == 0;
    if (isComputed && element.text.starts_with(L"-Drcp.install.config=")) {
        const auto entries = account.sources.entriesOf(L"install.configuration");
        return entries.empty() ? Origin() : entries.front()->origin;
    }
    if (!isWorkspacePath(index, account)) {
        return element.origin;
    }
    const auto rivals = rivalsForOption(L"-data", account);
    return rivals.empty() ? Origin() : rivals.front().origin;
}

json sourceAt(std::size_t index, const Origin& origin, const Account& account) {
    const bool isDefault = isWorkspacePath(index, account) && !origin.file && origin.line == 0;
    return isDefault ? json{{"kind", "environment"}, {"name", "HOME"}}
                     : account.sources.describe(origin);
}

// Those that could have stood here.
std::vector<Rival> rivalsAt(std::size_t index, const Property* entry, const std::wstring& vmarg,
                            const Account& account) {
    if (!vmarg.empty()) {
        return rivalsForVmarg(vmarg, account);
    }
    if (index > 0 && !propertiesFor(account.line.arguments()[index - 1].text).empty()) {
        return rivalsForOption(account.line.arguments()[index - 1].text, account);
    }
    return entry == nullptr ? std::vector<Rival>() : rivalsOf(*entry, account);
}

json describeLosers(std::size_t index, const std::vector<Rival>& rivals, const Account& account) {
    json losers = json::array();
    const bool isWon = !rivals.empty() && (isSamePlace(rivals.front().origin,
                                                       account.line.arguments()[index].origin) ||
                                           isWorkspacePath(index, account));
    for (std::size_t i = 1; isWon && i < rivals.size(); ++i) {
        losers.push_back({{"text", jsonText(rivals[i].text)},
                          {"source", account.sources.describe(rivals[i].origin)},
                          {"why", whyWon(rivals.front(), account)}});
    }
    return losers;
}

json describeElement(std::size_t index, const Arguments& given, const Account& account) {
    const Argument& element = account.line.arguments()[index];
    const Origin origin = originAt(index, account);
    const Property* source = account.sources.entryAt(origin);
    const Property* entry = account.sources.entryAt(element.origin);
    std::wstring written = writtenText(element, origin, source, given);
    const std::wstring vmarg = vmargName(element, entry, written);
    if (!vmarg.empty() && written.starts_with(vmarg + L"=")) {
        written.erase(0, vmarg.size() + 1);
    }
    return {{"text", jsonText(element.text)},
            {"rule", ruleFor(account.line.arguments(), index, entry, vmarg)},
            {"source", sourceAt(index, origin, account)},
            {"placeholders", describePlaceholders(written, account.witness)},
            {"instead", describeLosers(index, rivalsAt(index, entry, vmarg, account), account)}};
}

// The argument of that place as the assembly has dropped it; null without.
const Argument* droppedFrom(const Origin& origin, const Account& account) {
    const Arguments& dropped = account.line.dropped();
    const auto found = std::find_if(dropped.begin(), dropped.end(), [&](const Argument& argument) {
        return isSamePlace(argument.origin, origin);
    });
    return found == dropped.end() ? nullptr : &*found;
}

}  // namespace

Arguments launcherArguments(const Options& options) {
    Arguments arguments{Argument(toWide(options.launcher))};
    for (const std::string& argument : options.arguments) {
        arguments.emplace_back(toWide(argument), Origin{nullptr, arguments.size()});
    }
    return arguments;
}

json describeElements(const Account& account) {
    const Arguments given = launcherArguments(account.options);
    json elements = json::array();
    for (std::size_t i = 0; i < account.line.arguments().size(); ++i) {
        elements.push_back(describeElement(i, given, account));
    }
    return elements;
}

json describeDropped(const Account& account) {
    const Arguments given = launcherArguments(account.options);
    json dropped = json::array();
    for (std::size_t position = 1; position < given.size() && !account.line.arguments().empty();
         ++position) {
        if (elementsFrom(given[position].origin, account).empty()) {
            dropped.push_back(
                {{"position", position},
                 {"text", jsonText(given[position].text)},
                 {"why", whyDropped(given, position, droppedFrom(given[position].origin, account),
                                    account.launch.inputs.isInitial)}});
        }
    }
    return dropped;
}

}  // namespace rcp::inspect
