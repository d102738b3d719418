#include "inspect/redaction/escaped_text.h"

#include "launcher/properties/java_properties.h"
#include "launcher/properties/property_text.h"
#include "platform/text.h"

#include <algorithm>
#include <cctype>

namespace rcp::inspect {
namespace {

constexpr std::size_t kCode = 6;  // "\u003d"

// Of the line feed, and of the blanks that the next line begins with.
std::size_t sizeOfContinuation(std::string_view text) {
    const std::size_t feed = text.starts_with("\\\r\n") ? 2 : 1;
    return text.substr(feed).starts_with('\n')
               ? std::min(text.find_first_not_of(" \t", feed + 1), text.size())
               : 0;
}

// What stands for itself between names, values and their separators.
bool isPlain(std::string_view character) {
    return character.size() == 1 && character != "\"" &&
           std::isgraph(static_cast<unsigned char>(character.front())) != 0;
}

}  // namespace

PlainText plainText(std::string_view escaped) {
    PlainText plain;
    const auto add = [&](std::string_view characters, std::size_t place, std::size_t step) {
        for (const char character : characters) {
            plain.text += character;
            plain.places.push_back(place);
            place += step;
        }
    };
    for (std::size_t at = 0; at < escaped.size();) {
        const std::string_view rest = escaped.substr(at);
        std::size_t size = 1;
        if (rest.front() != '\\') {
            add(rest.substr(0, size), at, 1);
        } else if (const std::size_t lines = sizeOfContinuation(rest); lines > 0) {
            size = lines;
        } else if (rest.substr(1).starts_with('u')) {
            const std::string_view code = rest.substr(0, kCode);
            const std::string character = readForm(code);
            size = code.size();
            isPlain(character) ? add(character, at, 0) : add(code, at, 1);
        } else {
            size = std::min<std::size_t>(2, rest.size());
            add(rest.substr(1, size - 1), at, 0);
        }
        at += size;
    }
    plain.places.push_back(escaped.size());
    return plain;
}

SecretPart partOfEntry(std::string_view entry, std::string_view value, SecretPart part) {
    std::vector<std::size_t> places;
    std::size_t next = std::min(entry.find_first_of("=: \t"), entry.size());
    for (std::size_t at = next; at < entry.size() && places.size() < value.size();) {
        const std::string_view rest = entry.substr(at);
        const std::size_t size = rest.starts_with("\\u")    ? std::min(kCode, rest.size())
                                 : rest.starts_with("\\\\") ? 2
                                                            : 1;
        const std::string said =
            size > 1 ? readForm(rest.substr(0, size)) : std::string(rest.substr(0, 1));
        const bool isDropped = said == "\\" && size == 1;
        if (!isDropped && value.substr(places.size()).starts_with(said)) {
            places.insert(places.end(), said.size(), at);
            next = at + size;
        }
        at += size;
    }
    part.begin = part.begin < places.size() ? places[part.begin] : next;
    part.end = part.end < places.size() ? places[part.end] : entry.size();
    return part;
}

std::string writtenForm(std::string_view value) {
    const std::wstring wide = toWide(std::string(value));
    std::string written = toNarrow(convWcharTo8859_1_Value(wide));
    return written.empty() ? std::string(value) : written;
}

std::string readForm(std::string_view written) {
    std::wstring wide = toWide(std::string(written));
    FilterValue(wide);
    std::string value = toNarrow(wide);
    return value.empty() ? std::string(written) : value;
}

}  // namespace rcp::inspect
