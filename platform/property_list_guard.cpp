// Tells the form of a property list by its first bytes.
#include "platform/property_list_guard.h"

#include <cstddef>

namespace rcp::platform {

namespace {

constexpr std::string_view kBinaryMagic = "bplist00";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\n";

}  // namespace

PropertyListForm guardPropertyList(std::string_view data, std::size_t mostBytes) {
    if (data.size() > mostBytes) {
        return PropertyListForm::kRefused;
    }
    if (data.starts_with(kBinaryMagic)) {
        return isSafeBinaryPropertyList(data) ? PropertyListForm::kBinary
                                              : PropertyListForm::kRefused;
    }
    std::string_view text = data;
    text.remove_prefix(text.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0);
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos || text[first] != '<') {
        return PropertyListForm::kRefused;
    }
    return isSafeXmlPropertyList(text) ? PropertyListForm::kXml : PropertyListForm::kRefused;
}

}  // namespace rcp::platform
