// What a platform lock file may hold, against the C library's own reading of a number.
#include "launcher/instance/lock_content.h"

#include "fuzz/fuzz.h"

#include <cstdio>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace rcp;
    using rcp::fuzz::require;
    const std::string content(reinterpret_cast<const char*>(data), size);
    const LockContent parsed = parseLockContent(content);
    long number = 0;
    const int items = sscanf(content.c_str(), "%ld", &number);  // NOLINT(cert-err34-c)
    if (items == 1) {
        require(parsed.kind == LockContent::kNumber && parsed.number == number,
                "a number is read as the C library reads it");
    } else {
        require(parsed.kind != LockContent::kNumber, "what is no number is none");
    }
    constexpr std::string_view kNoData(" \t\n\v\f\r\0", 7);
    const bool isEmpty = content.find_first_not_of(kNoData) == std::string::npos;
    require(isEmpty == (parsed.kind == LockContent::kNothing), "blanks and NUL bytes are nothing");

    // An id written over whatever stands in the file is read back.
    if (parsed.kind == LockContent::kNumber && parsed.number >= 0) {
        std::string file = content;
        const std::string id = lockContentFor(parsed.number);
        file.replace(0, std::min(id.size(), file.size()), id);
        const LockContent again = parseLockContent(file);
        require(again.kind == LockContent::kNumber && again.number == parsed.number,
                "what is recorded is read back");
    }
    const std::wstring text = fuzz::wide(content);
    const long old = oldProcessId(text);
    require(old == 0 || std::to_wstring(old).size() <= text.size(), "no id comes from nowhere");
    require(oldProcessId(std::to_wstring(old)) == old, "an id is read back");
    return 0;
}
