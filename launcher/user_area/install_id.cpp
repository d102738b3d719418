#include "launcher/user_area/install_id.h"

#include "base/system_calls.h"
#include "base/transfer.h"
#include "diagnostics/svc_debug.h"
#include "launcher/properties/property_file.h"
#include "launcher/vocabulary/keys.h"
#include "platform/environment.h"
#include "platform/file_lock.h"
#include "platform/files.h"
#include "platform/text.h"

#include <errno.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace rcp {
namespace {

constexpr Key kKey = keys::kInstallId;

// Whether the last line of the file lacks its line feed; what is appended would become part of it.
bool lastLineIsOpen(int descriptor, off_t size) {
    char last = '\n';
    return size > 0 && calls::pread(descriptor, &last, 1, size - 1) == 1 && last != '\n';
}

// Appends the id as a line of its own. A line that cannot be written whole is taken back.
bool appendLine(int descriptor, const std::wstring& id) {
    struct stat status {};
    if (calls::fstat(descriptor, &status) != 0) {
        return false;
    }
    std::string line = lastLineIsOpen(descriptor, status.st_size) ? "\n" : "";
    line += toNarrow(kKey + L"=" + id + L"\n");
    if (writeFully(descriptor, line)) {
        return true;
    }
    const int error = errno;
    if (calls::ftruncate(descriptor, status.st_size) != 0) {
        report(because(errno), messages.installIdLineIncomplete);
    }
    errno = error;
    return false;
}

// The id in the file as it is now: another launcher may have appended one meanwhile.
std::wstring storedId(const std::wstring& propertyFile) {
    PropertyList stored;
    getProperties(propertyFile, stored);
    const std::wstring* id = findProperty(kKey, stored);
    return id == nullptr ? std::wstring() : *id;
}

std::wstring makeInstallId(const std::wstring& propertyFile) {
    const Stream stream = open_file(propertyFile, L"a+");
    if (!stream || !lockExclusively(fileno(stream.get()))) {
        fatal(because(errno), messages.installIdFileNotOpened, propertyFile);
    }
    std::wstring id = storedId(propertyFile);
    if (!id.empty()) {
        return id;
    }
    id = getTickString();
    const int descriptor = fileno(stream.get());
    // A file that ends inside a continued entry takes the first line into that entry.
    if (!appendLine(descriptor, id) ||
        (storedId(propertyFile) != id && !appendLine(descriptor, id))) {
        fatal(because(errno), messages.installIdNotWritten, propertyFile);
    }
    return id;
}

}  // namespace

std::wstring getInstallID(InstallConfiguration configuration, const std::wstring& propertyFile,
                          PropertyList& properties) {
    if (const std::wstring* id = findProperty(kKey, properties)) {
        return *id;
    }
    if (configuration != InstallConfiguration::kUserpb) {
        fatal(noReason().from(wholeFile(propertyFile)), messages.installIdRequired);
    }
    std::wstring id = makeInstallId(propertyFile);
    pushBackProperty(properties, kKey, id);
    return id;
}

std::wstring getTickString() {
    const timeval tick = getTick();
    return std::to_wstring(static_cast<unsigned long>(tick.tv_sec) * 1'000'000UL +
                           static_cast<unsigned long>(tick.tv_usec));
}

bool isOldRcpInstallId(const std::wstring& currentId, const PropertyList& stored) {
    const std::wstring* id = findProperty(kKey, stored);
    return id != nullptr && !id->empty() && *id != currentId;
}

}  // namespace rcp
