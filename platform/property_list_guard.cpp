// Tells the form of a property list by its first bytes.
#include "platform/property_list_guard.h"

#include <cstddef>
#include <string>

namespace rcp::platform {

namespace {

constexpr std::string_view kBinaryMagic = "bplist00";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\n";

/// The text of a UTF-16 list (with its byte order mark) reduced to one byte a unit. What is not
/// ASCII becomes "x": it cannot be markup.
std::string narrowedUtf16(std::string_view data) {
    const bool bigEndian = data[0] == '\xFE';
    std::string text;
    text.reserve(data.size() / 2);
    for (std::size_t i = 2; i + 1 < data.size(); i += 2) {
        const auto high = static_cast<unsigned char>(data[bigEndian ? i : i + 1]);
        const auto low = static_cast<unsigned char>(data[bigEndian ? i + 1 : i]);
        text += high == 0 && low < 0x80 ? static_cast<char>(low) : 'x';
    }
    return text;
}

}  // namespace

PropertyListForm guardPropertyList(std::string_view data, std::size_t mostBytes) {
    if (data.size() > mostBytes) {
        return PropertyListForm::kRefused;
    }
    if (data.starts_with(kBinaryMagic)) {
        return isSafeBinaryPropertyList(data) ? PropertyListForm::kBinary
                                              : PropertyListForm::kRefused;
    }
    std::string narrowed;
    std::string_view text = data;
    std::string_view marked;
    if (data.starts_with("\xFE\xFF") || data.starts_with("\xFF\xFE")) {
        narrowed = narrowedUtf16(data);
        text = narrowed;
        marked = "UTF-16";
    } else if (data.starts_with(kUtf8Mark)) {
        text.remove_prefix(kUtf8Mark.size());
    }
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos || text[first] != '<') {
        return PropertyListForm::kRefused;
    }
    return isSafeXmlPropertyList(text, marked) ? PropertyListForm::kXml
                                               : PropertyListForm::kRefused;
}

}  // namespace rcp::platform
