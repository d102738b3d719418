#include "inspect/explain/sources.h"

#include "diagnostics/format.h"
#include "inspect/check/launcher_end.h"
#include "inspect/property_keys.h"
#include "launcher/properties/property_file.h"

#include <algorithm>

namespace rcp::inspect {

nlohmann::json jsonText(std::wstring_view text) {
    return toUtf8(text);
}

Sources::Sources(const Witness& witness) {
    for (const std::wstring& path : witness.files()) {
        PropertyList list;
        endOf([&] { getProperties(path, list); });  // one that cannot be read has ended the launch
        files_.push_back({path, std::move(list)});
    }
    for (const File& file : files_) {
        for (const Property& entry : file.entries.entries()) {
            byPlace_.try_emplace({file.path, entry.origin.line}, &entry);
            if (counts(entry)) {
                byKey_[entry.key].push_back(&entry);
            }
        }
    }
}

const Sources::File* Sources::file(const std::wstring& path) const {
    const auto found = std::find_if(files_.begin(), files_.end(),
                                    [&](const File& file) { return file.path == path; });
    return found == files_.end() ? nullptr : &*found;
}

const Property* Sources::entryAt(const Origin& origin) const {
    if (!origin.file) {
        return nullptr;
    }
    const auto found = byPlace_.find({*origin.file, origin.line});
    return found == byPlace_.end() ? nullptr : found->second;
}

std::vector<const Property*> Sources::entriesOf(const std::wstring& key) const {
    const auto found = byKey_.find(key);
    return found == byKey_.end() ? std::vector<const Property*>() : found->second;
}

// A master copy has the name of the user's file; only what was read last is the user's.
bool Sources::counts(const Property& entry) const {
    const KeyFile kind = keyFileOf(*entry.origin.file);
    const auto last = std::find_if(files_.rbegin(), files_.rend(), [kind](const File& file) {
        return keyFileOf(file.path) == kind;
    });
    return findPropertyKey(entry.key, kind) != nullptr && last != files_.rend() &&
           last->path == *entry.origin.file;
}

nlohmann::json Sources::describe(const Origin& origin) const {
    if (!origin.file) {
        if (origin.line == 0) {
            return {{"kind", "computed"}};
        }
        return {{"kind", "command line"}, {"position", origin.line}};
    }
    nlohmann::json source{
        {"kind", "file"}, {"file", jsonText(*origin.file)}, {"line", origin.line}};
    if (const Property* entry = entryAt(origin)) {
        source["key"] = jsonText(entry->key);
        source["value"] = jsonText(entry->value);
    }
    return source;
}

}  // namespace rcp::inspect
