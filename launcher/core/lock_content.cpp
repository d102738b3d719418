#include "launcher/core/lock_content.h"

#include <stdlib.h>
#include <wchar.h>

namespace rcp {

LockContent parseLockContent(std::string_view content) {
    const std::string text(content.substr(0, content.find('\0')));
    const std::size_t begin = text.find_first_not_of(" \t\n\v\f\r");
    if (begin == std::string::npos) {
        // Behind the blanks of a shorter text there is a NUL, which is no blank and no number.
        return {text.size() == content.size() ? LockContent::kNothing : LockContent::kOther, 0};
    }
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
