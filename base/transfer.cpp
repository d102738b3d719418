#include "base/transfer.h"

#include "base/system_calls.h"

#include <errno.h>

#include <array>

namespace rcp {
namespace {

// Calls `transfer` with what is left until nothing is.
template <typename Transfer>
bool writeAll(std::string_view bytes, Transfer transfer) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t written = transfer(bytes.data() + done, bytes.size() - done, done);
        if (written > 0) {
            done += static_cast<std::size_t>(written);
        } else if (written == 0 || errno != EINTR) {
            errno = written == 0 ? ENOSPC : errno;
            return false;
        }
    }
    return true;
}

}  // namespace

bool writeFully(int descriptor, std::string_view bytes) {
    return writeAll(bytes, [descriptor](const char* from, std::size_t size, std::size_t) {
        return calls::write(descriptor, from, size);
    });
}

bool writeFullyAt(int descriptor, std::string_view bytes, off_t offset) {
    return writeAll(bytes, [=](const char* from, std::size_t size, std::size_t done) {
        return calls::pwrite(descriptor, from, size, offset + static_cast<off_t>(done));
    });
}

std::optional<std::string> readBeginning(int descriptor, std::size_t limit) {
    std::string text(limit, '\0');
    std::size_t done = 0;
    while (done < limit) {
        const ssize_t length =
            calls::pread(descriptor, text.data() + done, limit - done, static_cast<off_t>(done));
        if (length < 0 && errno != EINTR) {
            return std::nullopt;
        }
        if (length == 0) {
            break;
        }
        done += length > 0 ? static_cast<std::size_t>(length) : 0;
    }
    text.resize(done);
    return text;
}

std::string readToEnd(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer;
    for (;;) {
        const ssize_t length = calls::read(descriptor, buffer.data(), buffer.size());
        if (length > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(length));
        } else if (length == 0 || errno != EINTR) {
            return text;
        }
    }
}

}  // namespace rcp
