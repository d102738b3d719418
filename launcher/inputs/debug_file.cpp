#include "launcher/inputs/debug_file.h"

#include "diagnostics/observer.h"
#include "launcher/vocabulary/paths.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/text.h"

namespace rcp {

std::optional<std::wstring> debugFile(const std::wstring& installDir) {
    const std::wstring path = osPath(installDir + paths::kDebugMarker);
    return exists(path) ? std::optional(path) : std::nullopt;
}

void waitForDeletionOfDebugFile(const std::optional<std::wstring>& debugFile) {
    for (bool isThere = debugFile.has_value(); isThere; isThere = exists(*debugFile)) {
        tellWait(Wait::kDebugMarker, *debugFile);
        sysSleep(1);
    }
}

}  // namespace rcp
