// copyFile: what it copies are bytes. Whoever reads the copy as text says so when it is none.
#include "diagnostics/svc_debug.h"
#include "platform/files.h"
#include "platform/whole_file.h"

#include <errno.h>
#include <stdio.h>

#include <array>
#include <string_view>

namespace rcp {
namespace {

using Buffer = std::array<char, std::size_t{16} * 1024>;

[[noreturn]] void cannotRead(const std::wstring& source) {
    fatal(because(errno), messages.copyWithoutEnd, source);
}

// Whether the destination is a copy of the source already. Only told of short files, and every
// launch copies one; when it is not, the source is at its start again afterwards.
bool isCopied(std::FILE& source, const std::wstring& path, const std::wstring& destination,
              Buffer& buffer) {
    const std::size_t length = fread(buffer.data(), 1, buffer.size(), &source);
    const bool isWhole = length < buffer.size() && ferror(&source) == 0;
    if (isWhole && holdsText(destination, {buffer.data(), length})) {
        return true;
    }
    clearerr(&source);
    // What was read so far would be missing from the copy.
    if (fseek(&source, 0, SEEK_SET) != 0) {
        cannotRead(path);
    }
    return false;
}

}  // namespace

bool copyFile(const std::wstring& source, const std::wstring& destination) {
    const Stream from = open_file(source, L"r");
    if (!from) {
        fatal(because(errno), messages.copySourceNotOpened, source);
    }
    (void)setvbuf(from.get(), nullptr, _IONBF, 0);  // every read fills the buffer below
    Buffer buffer;
    if (isCopied(*from, source, destination, buffer)) {
        return true;
    }
    WholeFile to(destination);
    if (!to.open()) {
        fatal(because(errno), messages.copyTargetNotOpened, destination);
    }
    std::size_t length = 0;
    while ((length = fread(buffer.data(), 1, buffer.size(), from.get())) > 0) {
        if (!to.write({buffer.data(), length})) {
            fatal(because(errno), messages.copyFailed);
        }
    }
    if (ferror(from.get()) != 0) {
        cannotRead(source);
    }
    if (!to.commit()) {
        fatal(because(errno), messages.copyFailed);
    }
    return true;
}

}  // namespace rcp
