// copyFile: what it copies are bytes. Whoever reads the copy as text says so when it is none.
#include "diagnostics/svc_debug.h"
#include "platform/files.h"
#include "platform/whole_file.h"

#include <errno.h>

namespace rcp {

bool copyFile(const UniqueFd& opened, const std::wstring& source, const std::wstring& destination) {
    const std::optional<FileText> from = opened ? textOf(opened) : std::nullopt;
    if (!from) {
        fatal(because(errno), messages.copySourceNotOpened, source);
    }
    // Every launch copies a file that is most often a copy already.
    if (from->error == 0 && holdsText(destination, from->bytes)) {
        return true;
    }
    WholeFile to(destination);
    if (!to.open()) {
        fatal(because(errno), messages.copyTargetNotOpened, destination);
    }
    if (!to.write(from->bytes)) {
        fatal(because(errno), messages.copyFailed);
    }
    if (from->error != 0) {
        fatal(because(from->error), messages.copyWithoutEnd, source);
    }
    if (!to.commit()) {
        fatal(because(errno), messages.copyFailed);
    }
    return true;
}

bool copyFile(const std::wstring& source, const std::wstring& destination) {
    return copyFile(openExisting(source), source, destination);
}

}  // namespace rcp
