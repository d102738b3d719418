#include "inspect/explain/contest.h"

#include "inspect/explain/rules.h"
#include "inspect/property_keys.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

constexpr std::wstring_view kVmarg = L"vmarg.";
constexpr std::wstring_view kSetVariable = L"env.set.";

bool isUsers(const Property& entry) {
    return keyFileOf(*entry.origin.file) == kUserFile;
}

void add(std::vector<Rival>& rivals, const std::vector<const Property*>& entries) {
    for (const Property* entry : entries) {
        rivals.push_back({entry->value, entry->origin});
    }
}

// The entries of a key that the launcher looks for in the list that `entry` is in: the user's file
// has its own.
std::vector<const Property*> entriesBeside(const Property& entry, const Sources& sources) {
    std::vector<const Property*> entries = sources.entriesOf(entry.key);
    std::erase_if(entries,
                  [&](const Property* other) { return isUsers(*other) != isUsers(entry); });
    return entries;
}

// Keys by whose beginning the launcher finds entries: every one of them counts.
bool areAllUsed(const Property& entry) {
    const PropertyKey* known = findPropertyKey(entry.key, keyFileOf(*entry.origin.file));
    return known == nullptr || known->tail == KeyTail::kAnything;
}

}  // namespace

bool isSamePlace(const Origin& one, const Origin& other) {
    return one.line == other.line && (one.file == nullptr) == (other.file == nullptr) &&
           (one.file == nullptr || *one.file == *other.file);
}

std::vector<std::size_t> elementsFrom(const Origin& origin, const Account& account) {
    const Arguments& elements = account.line.arguments();
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (isSamePlace(elements[i].origin, origin)) {
            found.push_back(i);
        }
    }
    return found;
}

std::vector<const Property*> extensionEntries(const Account& account) {
    std::vector<const Property*> entries;
    const Arguments arguments = launcherArguments(account.options);
    const Argument* name = optionValue(L"-config", arguments);
    for (std::size_t n = 1; name != nullptr; ++n) {
        const auto numbered =
            account.sources.entriesOf(L"config." + name->text + L"." + std::to_wstring(n));
        if (numbered.empty()) {
            break;
        }
        if (!numbered.front()->value.empty()) {
            entries.push_back(numbered.front());
        }
    }
    return entries;
}

std::vector<Rival> rivalsForVmarg(const std::wstring& name, const Account& account) {
    std::vector<Rival> rivals;
    const std::wstring beginning = name + L"=";
    for (const Argument& argument : launcherArguments(account.options)) {
        if (argument.text.starts_with(beginning)) {
            rivals.push_back({argument.text.substr(beginning.size()), argument.origin});
        }
    }
    for (const Property* entry : extensionEntries(account)) {
        if (entry->value.starts_with(beginning)) {
            rivals.push_back({entry->value.substr(beginning.size()), entry->origin});
        }
    }
    add(rivals, account.sources.entriesOf(name));
    return rivals;
}

std::vector<Rival> rivalsForOption(std::wstring_view option, const Account& account) {
    std::vector<Rival> rivals;
    const Arguments arguments = launcherArguments(account.options);
    if (const Argument* value = optionValue(option, arguments)) {
        rivals.push_back({value->text, value->origin});
    } else if (const auto index = findOption(option, arguments); index && option != L"-data") {
        // Without a value it still keeps the property out, save the workspace's.
        rivals.push_back({L"", arguments[*index].origin});
    }
    const auto extension = extensionEntries(account);
    for (std::size_t i = 0; i + 1 < extension.size(); ++i) {
        if (extension[i]->value == option) {
            rivals.push_back({extension[i + 1]->value, extension[i + 1]->origin});
        }
    }
    for (const std::wstring_view key : propertiesFor(option)) {
        auto entries = account.sources.entriesOf(std::wstring(key));
        // Only of "product" do entries of the user's file count, and they do first.
        std::stable_partition(entries.begin(), entries.end(),
                              [](const Property* entry) { return isUsers(*entry); });
        add(rivals, entries);
    }
    return rivals;
}

std::vector<Rival> rivalsOf(const Property& entry, const Account& account) {
    if (!account.sources.counts(entry)) {
        return {};
    }
    if (entry.key.starts_with(kVmarg)) {
        return rivalsForVmarg(entry.key, account);
    }
    const std::wstring_view option = optionFor(entry.key);
    if (!option.empty()) {
        return rivalsForOption(option, account);
    }
    std::vector<Rival> rivals;
    if (!areAllUsed(entry)) {
        add(rivals, entriesBeside(entry, account.sources));
    }
    if (entry.key.starts_with(kSetVariable)) {
        std::reverse(rivals.begin(), rivals.end());  // each sets the variable anew
    }
    return rivals;
}

const char* whyWon(const Rival& winner, const Account& account) {
    const Property* entry = account.sources.entryAt(winner.origin);
    if (entry == nullptr) {
        return "the command line wins";
    }
    if (entry->key.starts_with(L"config.")) {
        return "the configuration extension wins";
    }
    if (entry->key == L"product" && isUsers(*entry)) {
        return "the user's file wins";
    }
    return entry->key.starts_with(kSetVariable) ? "the entry read last wins"
                                                : "the entry read first wins";
}

}  // namespace rcp::inspect
