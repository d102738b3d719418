// The value filter and the trimmer, against the same rules written down step by step.
#include "fuzz/fuzz.h"
#include "launcher/properties/property_text.h"

#include <wchar.h>

#include <algorithm>

namespace {

using namespace rcp;
using rcp::fuzz::require;

// In place, one escape after the other.
std::wstring filteredStepByStep(std::wstring value) {
    for (std::size_t at = value.find(L'\\'); at != std::wstring::npos; at = value.find(L'\\', at)) {
        const std::wstring next = value.substr(at + 1, 1);
        if (next == L"\\") {
            value.erase(at++, 1);
        } else if (next == L"u") {
            std::wstring digits = value.substr(at + 2, 4);
            const std::size_t taken = digits.size();
            digits.resize(std::min(digits.find_first_not_of(L"0123456789abcdefABCDEF"), taken));
            const auto code = static_cast<wchar_t>(wcstol(digits.c_str(), nullptr, 16));
            value.replace(at++, 2 + taken, 1, code);
        } else {
            value.erase(at, 1);
        }
    }
    value = value.c_str();
    const std::size_t first = value.find_first_not_of(L' ');
    return first == std::wstring::npos
               ? value
               : value.substr(first, value.find_last_not_of(L' ') + 1 - first);
}

std::wstring filtered(std::wstring value) {
    FilterValue(value);
    return value;
}

std::wstring trimmed(std::wstring text) {
    trimString(text);
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring value =
        fuzz::wide(std::string_view(reinterpret_cast<const char*>(data), size));
    const std::wstring once = filtered(value);
    require(once == filteredStepByStep(value), "the filter follows its rules");
    require(once.size() <= value.size(), "a filtered value is not longer");
    if (once.find(L'\\') == std::wstring::npos) {
        require(filtered(once) == once, "what holds no escape stays");
    }
    require(trimmed(trimmed(value)) == trimmed(value), "trimming twice is trimming once");
    fuzz::requireLinearTime(value, [](const std::wstring& large) { (void)filtered(large); });
    return 0;
}
