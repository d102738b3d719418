#include "inspect/copies/user_copies.h"

#include "inspect/check/finding.h"
#include "inspect/quiet_read.h"
#include "launcher/properties/property_file.h"
#include "launcher/user_area/user_files.h"
#include "launcher/vocabulary/keys.h"
#include "platform/files.h"
#include "platform/text.h"

namespace rcp::inspect {
namespace {

PropertyList entriesOf(const std::wstring& path) {
    return parseProperties(readQuietly(toNarrow(path)), {});
}

// The first entry of a key counts on either side.
void compare(const std::wstring& copy, const std::wstring& master, const PropertyList& masters,
             std::vector<StaleEntry>& stale) {
    const PropertyList users = entriesOf(copy);
    for (const Property& entry : masters.entries()) {
        const Property* own = users.find(entry.key);
        if (masters.find(entry.key) == &entry && (own == nullptr || own->value != entry.value)) {
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

}  // namespace

std::string StaleEntry::message() const {
    if (!users) {
        return inspect::quoted(key) + " is missing in the user's copy; its master has " +
               inspect::quoted(value);
    }
    return inspect::quoted(key) + " is " + inspect::quoted(*users) + " in the user's copy, " +
           inspect::quoted(value) + " in its master";
}

std::vector<StaleEntry> staleEntries(const Examination& examination) {
    std::vector<StaleEntry> stale;
    const LaunchInputs& inputs = examination.inputs;
    if (examination.base.empty()) {
        return stale;
    }
    const auto masterOf = [&](const wchar_t* name) {
        return getCoreFileLocation(inputs.traits.eConfig, examination.base, name);
    };
    const std::wstring settings = osPath(inputs.configuration + L"/config.ini");
    if (exists(settings)) {
        const std::wstring master = masterOf(L"config.ini");
        compare(settings, master, entriesOf(master), stale);
    }
    if (const std::wstring own = userFileOf(inputs.configuration); exists(own)) {
        compare(own, masterOf(L"rcpinstall.properties"), copiedEntries(examination), stale);
    }
    return stale;
}

}  // namespace rcp::inspect
