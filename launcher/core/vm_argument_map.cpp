#include "launcher/core/vm_argument_map.h"

#include "diagnostics/svc_debug.h"

#include <string_view>
#include <utility>

namespace rcp {
namespace {

constexpr std::wstring_view kPrefix = L"vmarg.";

// `invalidMessage` differs by source, so that the record tells where the argument came from.
void insertArguments(VmArgumentMap& map, const Arguments& arguments, const char* invalidMessage) {
    for (const std::wstring& argument : arguments) {
        if (!argument.starts_with(kPrefix)) {
            continue;
        }
        const std::size_t equals = argument.find(L'=');
        if (equals == std::wstring::npos) {
            fatal(invalidMessage);
        }
        map.try_emplace(argument.substr(0, equals), VmArgument{argument.substr(equals + 1), {}});
    }
}

}  // namespace

void insertPropToVmargMap(VmArgumentMap& map, PropertyList& properties) {
    for (Property& entry : properties.extract(kPrefix)) {
        map.try_emplace(std::move(entry.key),
                        VmArgument{std::move(entry.value), std::move(entry.origin)});
    }
}

void insertArgsToVmargMap(VmArgumentMap& map, const Arguments& arguments,
                          const PropertyList& /*properties*/) {
    insertArguments(map, arguments, "ZYPRA0033E: rcplauncher invoked with an invalid vmarg.");
}

void insertCargsToVmargMap(VmArgumentMap& map, const Arguments& arguments) {
    insertArguments(map, arguments, "ZYPRA0128E: rcplauncher invoked with an invalid vmarg.");
}

}  // namespace rcp
