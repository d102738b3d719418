// copyFile: a text copy. The text must be valid in the locale's character set, because everything
// that reads the copy converts it.
#include "diagnostics/svc_debug.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/whole_file.h"

#include <errno.h>
#include <stdio.h>
#include <wchar.h>

#include <array>
#include <string_view>

namespace rcp {
namespace {

// Checks text that arrives in pieces; a character may be split between two of them.
class TextCheck {
  public:
    bool accept(std::string_view piece) {
        while (!piece.empty()) {
            if (mbsinit(&state_) != 0 && static_cast<unsigned char>(piece.front()) < 0x80) {
                piece.remove_prefix(1);
                continue;
            }
            const std::size_t length = mbrtowc(nullptr, piece.data(), piece.size(), &state_);
            if (length == static_cast<std::size_t>(-1)) {
                return false;
            }
            if (length == static_cast<std::size_t>(-2)) {
                return true;
            }
            piece.remove_prefix(length == 0 ? 1 : length);
        }
        return true;
    }
    // Whether the text so far ends with a whole character.
    [[nodiscard]] bool isComplete() const { return mbsinit(&state_) != 0; }

  private:
    mbstate_t state_{};
};

using Buffer = std::array<char, std::size_t{16} * 1024>;

// Whether the destination is a copy of the source already. Only told of short files, and every
// launch copies one; when it is not, the source is at its start again afterwards.
bool isCopied(std::FILE& source, const std::wstring& destination, Buffer& buffer) {
    const std::size_t length = fread(buffer.data(), 1, buffer.size(), &source);
    const bool isWhole = length < buffer.size() && ferror(&source) == 0;
    const std::string_view text(buffer.data(), length);
    TextCheck check;
    if (isWhole && holdsText(destination, text) && check.accept(text) && check.isComplete()) {
        return true;
    }
    clearerr(&source);
    // What was read so far would be missing from the copy.
    if (fseek(&source, 0, SEEK_SET) != 0) {
        fatal("ZYPRA0193E: Did not encounter EOF while copying file contents");
    }
    return false;
}

}  // namespace

bool copyFile(const std::wstring& source, const std::wstring& destination) {
    Stream from;
    open_file(from, source, L"r");
    if (!from) {
        fatal("ZYPRA0190E: Unable to open source file %ls to be copied", source);
    }
    (void)setvbuf(from.get(), nullptr, _IONBF, 0);  // every read fills the buffer below
    Buffer buffer;
    if (isCopied(*from, destination, buffer)) {
        return true;
    }
    WholeFile to(destination);
    if (!to.open()) {
        fatal("ZYPRA0191E: Unable to open destination file %ls to be copied to", destination);
    }
    TextCheck check;
    std::size_t length = 0;
    while ((length = fread(buffer.data(), 1, buffer.size(), from.get())) > 0) {
        const std::string_view piece(buffer.data(), length);
        if (!check.accept(piece)) {
            errno = EILSEQ;
            fatal("ZYPRA0193E: Did not encounter EOF while copying file contents");
        }
        if (!to.write(piece)) {
            fatal("ZYPRA0192E: Encountered error copying file contents");
        }
    }
    if (ferror(from.get()) != 0 || !check.isComplete()) {
        fatal("ZYPRA0193E: Did not encounter EOF while copying file contents");
    }
    if (!to.commit()) {
        fatal("ZYPRA0192E: Encountered error copying file contents");
    }
    return true;
}

}  // namespace rcp
