#include "inspect/bundle/mach_o.h"
#include "inspect/handoff/own_code.h"

#include <sys/utsname.h>

#include <algorithm>

namespace rcp::inspect {

const char* const kLibraryEnding = ".dylib";

bool looksLikeOwnCode(std::string_view start) {
    return looksLikeMachO(start);
}

std::optional<OwnCode> readOwnCode(std::string_view file) {
    const auto images = looksLikeMachO(file) ? readMachO(file) : std::nullopt;
    if (!images) {
        return std::nullopt;
    }
    utsname system{};
    uname(&system);
    OwnCode code;
    for (const CodeImage& image : *images) {
        code.machine += (code.machine.empty() ? "" : " ") + image.processor;
        code.isForThisMachine = code.isForThisMachine || image.processor == system.machine;
        code.isEmulated = code.isEmulated || image.processor == "x86_64";
        code.isLibrary = image.kind == CodeKind::kLibrary || image.kind == CodeKind::kPlugin;
    }
    return code;
}

// The system's own libraries are in no folder there; those of a bundle are examined with it.
std::string findLibrary(const std::string& name, const OwnCode& /*loader*/,
                        const std::string& /*path*/, const std::string& /*variable*/) {
    return name;
}

}  // namespace rcp::inspect
