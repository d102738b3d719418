#include "launcher/properties/vm_argument_map.h"

#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "diagnostics/whys.h"
#include "launcher/vocabulary/keys.h"

#include <iterator>
#include <string_view>
#include <utility>

namespace rcp {
namespace {

constexpr Key kPrefix = keys::kVmarg;

void tellBeaten(const std::wstring& text, const Origin& origin, const Argument& winner) {
    tellLoser(text, origin, whys::whyItWins(winner), &winner.origin);
}

// `invalid` differs by source, so that the record tells where the argument came from.
void insertArguments(VmArgumentMap& map, const Arguments& arguments, Message<> invalid) {
    for (const auto& [text, origin, why] : arguments) {
        if (!text.starts_with(kPrefix)) {
            continue;
        }
        const std::size_t equals = text.find(L'=');
        if (equals == std::wstring::npos) {
            fatal(noReason().from(origin), invalid);
        }
        const auto [at, isNew] =
            map.try_emplace(text.substr(0, equals), text.substr(equals + 1), origin);
        if (isNew) {
            at->second.why = why;
        } else if (at->second.origin != origin) {  // or it was taken in before
            tellBeaten(text, origin, at->second);
        }
    }
}

}  // namespace

void insertPropToVmargMap(VmArgumentMap& map, PropertyList& properties) {
    // Numbered or sorted names, the usual ones, follow each other in the map as in the file.
    auto next = map.end();
    for (Property& entry : properties.extract(kPrefix)) {
        const std::size_t size = map.size();
        const auto at = map.try_emplace(next, std::move(entry.key), std::move(entry.value),
                                        std::move(entry.origin));
        if (map.size() == size) {  // then nothing was moved
            tellBeaten(entry.value, entry.origin, at->second);
        }
        next = std::next(at);
    }
}

void insertArgsToVmargMap(VmArgumentMap& map, const Arguments& arguments,
                          const PropertyList& /*properties*/) {
    insertArguments(map, arguments, messages.vmargInvalid);
}

void insertCargsToVmargMap(VmArgumentMap& map, const Arguments& arguments) {
    insertArguments(map, arguments, messages.extensionVmargInvalid);
}

}  // namespace rcp
