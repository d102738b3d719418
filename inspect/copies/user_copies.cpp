#include "inspect/copies/user_copies.h"

#include "inspect/check/finding.h"
#include "inspect/quiet_read.h"
#include "launcher/properties/property_file.h"
#include "launcher/user_area/user_files.h"
#include "launcher/vocabulary/keys.h"
#include "launcher/vocabulary/paths.h"
#include "platform/files.h"
#include "platform/text.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

// Nothing of a file of which only a part would be read.
std::optional<PropertyList> entriesOf(const std::wstring& path) {
    const std::string text = readQuietly(toNarrow(path), kLongestSettings + 1);
    return text.size() > kLongestSettings ? std::nullopt : std::optional(parseProperties(text, {}));
}

// The first entry of a key counts on either side.
void compare(const std::wstring& copy, const std::wstring& master, const PropertyList& masters,
             std::vector<StaleEntry>& stale) {
    const auto users = isRegularFile(toNarrow(copy)) ? entriesOf(copy) : std::nullopt;
    if (!users) {
        return;
    }
    for (const Property& entry : masters.entries()) {
        const Property* own = users->find(entry.key);
        // What the user has emptied is meant.
        const bool isSwitchedOff = own != nullptr && own->value.empty();
        if (masters.find(entry.key) == &entry && !isSwitchedOff &&
            (own == nullptr || own->value != entry.value)) {
            stale.push_back({copy, master, entry.origin.line, entry.key, entry.value,
                             own == nullptr ? std::nullopt : std::optional(own->value)});
        }
    }
}

// What a copy made now would have of the master: not what the launcher appends, nor the level, which is
// the user's own.
PropertyList copiedEntries(const Examination& examination) {
    PropertyList copied;
    for (const Property& entry : examination.userEntries.entries()) {
        if (entry.origin.file && entry.key != keys::kProvisioningLevel) {
            copied.append(entry);
        }
    }
    return copied;
}

bool isEmpty(const std::wstring& file) {
    return isRegularFile(toNarrow(file)) && readQuietly(toNarrow(file), 1).empty();
}

// The first key of what the launcher appends to the user's file that is not in it.
std::wstring missingOfBlock(const std::wstring& file, const PropertyList& properties) {
    const auto block = userFileBlock(properties);
    if (!exists(file) || !block) {
        return {};
    }
    const auto entries = entriesOf(file);
    const PropertyList appended = parseProperties(block->lines, {});
    for (const Property& entry : appended.entries()) {
        if (entries && entries->find(entry.key) == nullptr) {
            return entry.key;
        }
    }
    return {};
}

}  // namespace

std::string StaleEntry::message() const {
    if (!users) {
        return inQuotes(key) + " is missing in the user's copy; its master has " + inQuotes(value);
    }
    return inQuotes(key) + " is " + inQuotes(*users) + " in the user's copy, " + inQuotes(value) +
           " in its master";
}

std::vector<StaleEntry> staleEntries(const Examination& examination) {
    std::vector<StaleEntry> stale;
    const LaunchInputs& inputs = examination.inputs;
    if (examination.base.empty() || examination.isAreaRenewed()) {
        return stale;
    }
    const auto masterOf = [&](const wchar_t* name) {
        return getCoreFileLocation(inputs.traits.eConfig, examination.base, name);
    };
    const std::wstring settings = osPath(inputs.configuration + L"/config.ini");
    if (exists(settings)) {
        const std::wstring master = masterOf(L"config.ini");
        compare(settings, master, entriesOf(master).value_or(PropertyList()), stale);
    }
    if (const std::wstring own = userFileOf(inputs.configuration); exists(own)) {
        compare(own, masterOf(paths::kUserProperties), copiedEntries(examination), stale);
    }
    return stale;
}

std::vector<IncompleteCopy> incompleteCopies(const Examination& examination) {
    const std::wstring& configuration = examination.inputs.configuration;
    std::vector<IncompleteCopy> incomplete;
    const std::wstring updates = osPath(configuration + L"/org.eclipse.update/platform.xml");
    constexpr char kEnd[] = "</config>";
    if (examination.inputs.area != UserArea::kReset && exists(updates) &&
        readEndQuietly(toNarrow(updates), kLongestSettings).find(kEnd) == std::string::npos) {
        incomplete.push_back({updates, std::string("it has no \"") + kEnd + "\""});
    }
    if (examination.isAreaRenewed()) {
        return incomplete;
    }
    const std::wstring settings = osPath(configuration + L"/config.ini");
    const std::wstring master =
        getCoreFileLocation(examination.inputs.traits.eConfig, examination.base, L"config.ini");
    if (isEmpty(settings) && !isEmpty(master)) {
        incomplete.push_back({settings, "it is empty, its master is not"});
    }
    const std::wstring own = userFileOf(configuration);
    if (const std::wstring key = missingOfBlock(own, examination.inputs.properties); !key.empty()) {
        incomplete.push_back(
            {own, inQuotes(key) + " is missing, which a launch writes at its end"});
    }
    const std::wstring arguments = osPath(configuration + L"/args.properties");
    if (const auto entries = entriesOf(arguments);
        exists(arguments) && entries && entries->find(keys::kArgumentCount) == nullptr) {
        incomplete.push_back({arguments, inQuotes(keys::kArgumentCount) + " is missing"});
    }
    return incomplete;
}

// Of the settings that the platform reads those who examine its configuration tell.
std::vector<std::wstring> longFiles(const Examination& examination) {
    const std::wstring& configuration = examination.inputs.configuration;
    std::vector<std::wstring> all{userFileOf(configuration),
                                  osPath(configuration + L"/args.properties")};
    if (exists(osPath(configuration + L"/config.ini"))) {
        all.push_back(getCoreFileLocation(examination.inputs.traits.eConfig, examination.base,
                                          L"config.ini"));
    }
    all.erase(std::remove_if(all.begin(), all.end(), entriesOf), all.end());
    return all;
}

}  // namespace rcp::inspect
