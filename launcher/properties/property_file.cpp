#include "launcher/properties/property_file.h"

#include "diagnostics/observer.h"
#include "diagnostics/svc_debug.h"
#include "launcher/properties/data_path.h"
#include "launcher/properties/property_text.h"
#include "launcher/vocabulary/keys.h"
#include "platform/files.h"

#include <errno.h>

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace rcp {
namespace {

constexpr wchar_t kByteOrderMark = 0xFEFF;

bool isSeparator(wchar_t character) {
    return character == L'=' || character == L':' || character == L' ' || character == L'\t';
}

// Characters in front of which a backslash is dropped by the reader itself. It protects nothing: in
// front of the value "\:" still separates.
bool isEscapable(wchar_t character) {
    return character == L':' || character == L'#' || character == L' ' || character == L'=';
}

// The number of characters from `begin` on that only ever stand for themselves: nearly all.
std::size_t plainLength(std::wstring_view line, std::size_t begin) {
    std::size_t end = begin;
    while (end < line.size() && line[end] != L'\\' && line[end] != L'\n' && line[end] != L'\r' &&
           !isSeparator(line[end])) {
        ++end;
    }
    return end - begin;
}

// An entry while its lines are read:
//
//            separator                    any other character
//   KEY -----------------> VALUE, eligible --------------------> VALUE, begun
//    ^                       ^   |  (further separators go)           |
//    |                       |   |                                    |
//    |  line without "\" end |   '--- next line of a continued entry <'
//    '----- entry done ------'
//
// Every line starts eligible, so a separator at the start of a continuation line goes too. Only a
// character of the value ends a pending continuation: an entry continued inside its key goes on
// until its value begins.
class Entry {
  public:
    // Takes one line; true when the entry is complete.
    bool addLine(const std::wstring& line) {
        if (!continues_) {
            inValue_ = false;
            if (line.size() >= 2) {
                isOption_ = line.starts_with(keys::kJvmOption);
            }
        }
        bool separatorEligible = true;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (const std::size_t length = plainLength(line, i); length > 0) {
                (inValue_ ? value : key).append(line, i, length);
                continues_ = continues_ && !inValue_;
                separatorEligible = separatorEligible && !inValue_;
                i += length - 1;
                continue;
            }
            const wchar_t character = line[i];
            const wchar_t next = i + 1 < line.size() ? line[i + 1] : L'\0';
            if (character == L'\\' && i + 1 == line.size()) {
                continues_ = true;
            } else if ((character == L'\\' && isEscapable(next)) || character == L'\n' ||
                       character == L'\r') {
                continue;
            } else if (separatorEligible && isSeparator(character)) {
                inValue_ = true;
                if (isOption_) {
                    value += character;
                }
            } else if (inValue_) {
                if (character == L'\\' && next == L'\\') {
                    value += L'\\';
                    ++i;
                }
                continues_ = false;
                separatorEligible = false;
                value += character;
            } else {
                key += character;
            }
        }
        return !continues_;
    }

    void clear() {
        key.clear();
        value.clear();
    }

    [[nodiscard]] bool isEmpty() const { return key.empty() && value.empty() && !continues_; }

    std::wstring key;
    std::wstring value;

  private:
    bool continues_ = false;
    bool inValue_ = false;
    bool isOption_ = false;  // a JVM option such as -Xname:value keeps its separator in the value
};

[[noreturn]] void cannotLoad(const std::wstring& path, const Reason& reason) {
    fatal(reason, messages.fileNotLoaded, path);
}

Property finish(Entry& entry, const Origin& origin) {
    FilterProp(entry.key);
    trace(messages.keyRead, entry.key);
    FilterValue(entry.value);
    if (entry.key.starts_with(keys::kData)) {
        entry.value = getDataPath(entry.key, entry.value);
    }
    trace(messages.valueRead, entry.value);
    Property property{entry.key, entry.value, origin};
    entry.clear();
    return property;
}

}  // namespace

PropertyList parseProperties(std::string_view text, const Origin& from) {
    PropertyList list;
    Origin origin = from;
    TextLines lines{text};
    Entry entry;
    std::wstring line;
    while (readFile(lines, kPropertyLineFormat, line)) {
        if (line.empty()) {
            reportUnreadableLine(from.file ? *from.file : std::wstring(), lines.line);
            continue;
        }
        if (lines.line == 1 && line.starts_with(kByteOrderMark)) {
            // With the white space that the scanner could not see behind the mark.
            line.erase(0, line.find_first_not_of(L" \t\r", 1));
            if (line.empty()) {
                continue;
            }
        }
        trace(messages.lineRead, line);
        if (line.starts_with(L'#')) {
            continue;
        }
        if (entry.isEmpty()) {
            origin.line = from.line + lines.line;
        }
        if (entry.addLine(line)) {
            list.append(finish(entry, origin));
        }
    }
    return list;
}

void addProperties(const FileText& text, const std::wstring& path, PropertyList& list) {
    PropertyList read = parseProperties(text.bytes, wholeFile(path));
    if (text.error != 0) {
        cannotLoad(path, because(text.error));
    }
    if (observer != nullptr) {
        observer->propertyFileRead(path, read);
    }
    list.append(std::move(read));
}

void getProperties(const UniqueFd& file, const std::wstring& path, PropertyList& list) {
    const std::optional<FileText> text = file ? textOf(file) : std::nullopt;
    if (!text) {
        cannotLoad(path, because(errno));
    }
    addProperties(*text, path, list);
}

void getProperties(const std::wstring& path, PropertyList& list) {
    getProperties(openExisting(path), path, list);
}

bool getPropertiesIfThere(const std::wstring& path, PropertyList& list) {
    const UniqueFd file = openExisting(path);
    if (!file) {
        const Reason reason = because(errno);
        if (errno != ENOENT && exists(path)) {
            cannotLoad(path, reason);
        }
        return false;
    }
    getProperties(file, path, list);
    return true;
}

}  // namespace rcp
