#include "platform/bundle_metadata.h"

#include "diagnostics/svc_debug.h"
#include "launcher/vocabulary/keys.h"
#include "platform/files.h"
#include "platform/whole_file.h"

#include <errno.h>

#include <algorithm>
#include <bit>
#include <cstdint>

namespace rcp {
namespace {

// What a list may have, and the byte with which it is refused. What is there is a claim: a disk image in
// the list's place is not read whole.
std::optional<FileText> textOfList(const std::wstring& path) {
    return readText(path, platform::kMaxPropertyListBytes + 1);
}

// In every locale, unlike toNarrow: a property list is UTF-8. What is no character becomes bytes
// that are none.
std::string utf8Of(const std::wstring& text) {
    std::string bytes;
    for (const wchar_t character : text) {
        const auto c = std::bit_cast<std::uint32_t>(character);
        const int following = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        constexpr unsigned kLead[] = {0x00, 0xC0, 0xE0, 0xF0};
        bytes += static_cast<char>(kLead[following] | c >> (6 * following));
        for (int left = following - 1; left >= 0; --left) {
            bytes += static_cast<char>(0x80 | (c >> (6 * left) & 0x3F));
        }
    }
    return bytes;
}

// What XML can hold at all. A parser may be more generous when it reads, but no other program is.
bool isXmlText(const std::wstring& text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t character) {
        const bool isSpace = character == L'\t' || character == L'\n' || character == L'\r';
        return isSpace || (character >= 0x20 && character != 0xFFFE && character != 0xFFFF);
    });
}

// The list as XML, which reads back with the identifier that it got; empty when that cannot be.
std::string withIdentifier(platform::PropertyListDocument& list, const std::string& identifier) {
    list.setString(keys::kBundleIdentifier, identifier);
    std::string xml = list.toXml();
    const auto again = platform::parsePropertyList(xml);
    const bool isSet = again && again->stringForKey(keys::kBundleIdentifier) == identifier;
    return isSet ? xml : std::string();
}

bool writeInPlace(const std::wstring& path, const std::string& text) {
    WholeFile file(path);
    return file.open() && file.write(text) && file.commit();
}

}  // namespace

std::optional<platform::PropertyListDocument> createPropertiesListFromFile(
    const std::wstring& path) {
    const std::optional<FileText> text = textOfList(path);
    return text && text->error == 0 ? platform::parsePropertyList(text->bytes) : std::nullopt;
}

void updateInfoPlist(const std::wstring& path, const std::wstring& identifier) {
    const std::optional<FileText> text = textOfList(path);
    const int error = text ? text->error : errno;
    if (!text && error == ENOENT) {
        return;
    }
    auto list = error == 0 ? platform::parsePropertyList(text->bytes) : std::nullopt;
    if (!list) {
        report(because(error), messages.bundleNotRead, path);
        return;
    }
    if (!list->isDictionary()) {
        return;
    }
    const std::string wanted = utf8Of(identifier);
    const std::optional<std::string> current = list->stringForKey(keys::kBundleIdentifier);
    if (current && platform::equalIgnoringCase(*current, wanted)) {
        return;
    }
    const std::string xml = isXmlText(identifier) ? withIdentifier(*list, wanted) : std::string();
    if (xml.empty()) {
        report(noReason(), messages.identifierNotSet, path);
    } else if (!writeInPlace(path, xml)) {
        report(because(errno), messages.bundleNotWritten, path);
    }
}

}  // namespace rcp
