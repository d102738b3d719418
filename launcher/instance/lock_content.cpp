#include "launcher/instance/lock_content.h"

#include <stdlib.h>
#include <wchar.h>

namespace rcp {

LockContent parseLockContent(std::string_view content) {
    // A power failure leaves NUL bytes where the blocks of the file were not written yet.
    constexpr std::string_view kNoData(" \t\n\v\f\r\0", 7);
    if (content.find_first_not_of(kNoData) == std::string_view::npos) {
        return {LockContent::kNothing, 0};
    }
    const std::string text(content.substr(0, content.find('\0')));
    char* end = nullptr;
    const long number = strtol(text.c_str(), &end, 10);  // saturates beyond its range
    if (end == text.c_str()) {
        return {LockContent::kOther, 0};
    }
    return {LockContent::kNumber, number};
}

std::string lockContentFor(long processId) {
    return std::to_string(processId) + "          ";
}

long oldProcessId(const std::wstring& value) {
    wchar_t* end = nullptr;
    const long number = wcstol(value.c_str(), &end, 10);
    return end == value.c_str() || *end != L'\0' ? 0 : number;
}

}  // namespace rcp
