#include "inspect/explain/sources.h"

#include "diagnostics/format.h"
#include "launcher/vocabulary/property_keys.h"

#include <algorithm>

namespace rcp::inspect {

nlohmann::json jsonText(std::wstring_view text) {
    return toUtf8(text);
}

Sources::Sources(const Witness& witness) : files_(witness.files()) {
    for (const ReadFile& file : files_) {
        for (const Property& entry : file.entries.entries()) {
            byPlace_.try_emplace(placeOf(entry.origin), &entry);
        }
    }
}

const ReadFile* Sources::file(const std::wstring& path) const {
    const auto found = std::find_if(files_.begin(), files_.end(),
                                    [&](const ReadFile& file) { return file.path == path; });
    return found == files_.end() ? nullptr : &*found;
}

const Property* Sources::entryAt(const Origin& origin) const {
    const auto found = byPlace_.find(placeOf(origin));
    return found == byPlace_.end() ? nullptr : found->second;
}

// A master copy has the name of the user's file; only what was read last is the user's.
bool Sources::counts(const Property& entry) const {
    const KeyFile kind = keyFileOf(*entry.origin.file);
    const auto last = std::find_if(files_.rbegin(), files_.rend(), [kind](const ReadFile& file) {
        return keyFileOf(file.path) == kind;
    });
    return findPropertyKey(entry.key, kind) != nullptr && last != files_.rend() &&
           last->path == *entry.origin.file;
}

nlohmann::json Sources::describe(const Origin& origin) const {
    if (origin.isComputed()) {
        return {{"kind", "computed"}};
    }
    if (origin.isCommandLine()) {
        return {{"kind", "command line"}, {"position", origin.line}};
    }
    if (!origin.file) {
        return {{"kind", "environment"}, {"name", "HOME"}};
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
