// Facts of single lines, which the entries no longer show.
#include "diagnostics/format.h"
#include "inspect/check/groups.h"
#include "launcher/properties/property_file.h"
#include "platform/files.h"
#include "platform/text.h"

#include <cwchar>
#include <set>

namespace rcp::inspect {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The number in the format with which property files are read.
std::size_t lineLimit() {
    const std::wstring_view format = kPropertyLineFormat;
    return std::wcstoul(&format[format.find(L'%') + 1], nullptr, 10);
}

std::size_t trailingBackslashes(std::string_view line) {
    return line.size() - (line.find_last_not_of('\\') + 1);
}

void findCarriageReturns(const PropertyFile& file, Findings& findings) {
    std::size_t first = 0;
    std::size_t count = 0;
    for (const RawLine& line : file.lines) {
        if (!line.text.ends_with('\r')) {
            continue;
        }
        first = count++ == 0 ? line.number : first;
        const std::string_view text = std::string_view(line.text).substr(0, line.text.size() - 1);
        if (!line.isComment() && trailingBackslashes(text) % 2 == 1) {
            findings.add("RI102", file.name, line.number,
                         "the backslash at the end does not continue the line");
        }
    }
    if (count > 0) {
        findings.add("RI101", file.name, first,
                     std::to_string(count) + " of " + std::to_string(file.lines.size()) +
                         " lines end in a carriage return, from here on");
    }
}

void findEncoding(const PropertyFile& file, Findings& findings) {
    if (file.bytes.starts_with(kByteOrderMark)) {
        findings.add("RI103", file.name, 1, "the file begins with a byte-order mark");
    }
    for (const RawLine& line : file.lines) {
        if (line.text.find('\0') != std::string::npos) {
            findings.add("RI108", file.name, line.number, "a NUL byte ends the line");
        } else if (!line.isBlank() && toWide(line.text).empty()) {
            findings.add("RI104", file.name, line.number, "the line is left out");
        }
    }
}

void findLongLines(const PropertyFile& file, Findings& findings) {
    const std::size_t limit = lineLimit();
    for (const RawLine& line : file.lines) {
        if (line.trimmed().size() > limit && !line.isComment()) {
            findings.add("RI105", file.name, line.number,
                         std::to_string(line.trimmed().size()) + " bytes, of which " +
                             std::to_string(limit) + " are read at once");
        }
    }
}

// What is appended to a file must be an entry of its own.
void findOpenEnd(const PropertyFile& file, Findings& findings) {
    const std::wstring marker = L"end.of.file";
    const PropertyList list =
        parseProperties(file.bytes + "\n" + toNarrow(marker) + "=reached\n", {});
    if (findProperty(marker, list) != nullptr) {
        return;
    }
    std::size_t last = 0;
    for (const RawLine& line : file.lines) {
        last = line.isBlank() || line.isComment() ? last : line.number;
    }
    findings.add("RI106", file.name, last, "the entry is lost");
}

// Whether the launcher's value ends at the escape that ends at `end`.
bool endsValue(const std::string& line, std::size_t end) {
    const PropertyList list = parseProperties("key=" + line.substr(0, end) + "Z\n", {});
    return !list.entries().empty() && !list.entries().front().value.ends_with(L'Z');
}

void findNulEscapes(const PropertyFile& file, const RawLine& line, Findings& findings) {
    for (std::size_t at = line.text.find("\\u"); at != std::string::npos;
         at = line.text.find("\\u", at + 2)) {
        if (endsValue(line.text, std::min(at + 6, line.text.size()))) {
            findings.add(
                "RI107", file.name, line.number,
                "\"" + std::string(cutAtCharacter(std::string_view(line.text).substr(at), 6)) +
                    "\" ends the value");
            return;
        }
    }
}

bool isHexEscape(std::string_view behind) {
    return behind.starts_with('u') && behind.size() >= 5 &&
           behind.substr(1, 4).find_first_not_of("0123456789abcdefABCDEF") ==
               std::string_view::npos;
}

void findLostBackslashes(const PropertyFile& file, const RawLine& line, Findings& findings) {
    const std::string_view text = line.text;
    for (std::size_t at = text.find('\\'); at != std::string_view::npos; at = text.find('\\', at)) {
        const std::size_t end = std::min(text.find_first_not_of('\\', at), text.size());
        const std::string_view behind = text.substr(end);
        const std::size_t count = end - at;
        const bool isEscape =
            behind.empty() || isHexEscape(behind) ||
            std::string_view(":#= \r").find(behind.front()) != std::string_view::npos;
        if (count % 2 == 1 && !isEscape) {
            findings.add("RI111", file.name, line.number,
                         "the backslash in front of \"" + std::string(cutAtCharacter(behind, 8)) +
                             "\" goes away");
            return;
        }
        at = end;
    }
}

void findInContinuation(const PropertyFile& file, const RawLine& line, Findings& findings) {
    const std::string_view text = line.trimmed();
    if (text.starts_with('=') || text.starts_with(':')) {
        findings.add("RI109", file.name, line.number,
                     "\"" + std::string(text.substr(0, 1)) + "\" is lost");
    }
    const PropertyList list = parseProperties(text, {});
    if (!list.entries().empty() && text.find('=') != std::string_view::npos &&
        findPropertyKey(list.entries().front().key, file.kind) != nullptr) {
        findings.add(
            "RI110", file.name, line.number,
            "\"" + toUtf8(list.entries().front().key) + "\" is part of the value in front");
    }
}

void findInEntries(const PropertyFile& file, Findings& findings) {
    std::set<std::size_t> starts;
    for (const Property& entry : file.entries.entries()) {
        starts.insert(entry.origin.line);
    }
    for (const RawLine& line : file.lines) {
        if (line.isBlank() || line.isComment()) {
            continue;
        }
        findNulEscapes(file, line, findings);
        findLostBackslashes(file, line, findings);
        const bool isContinuation =
            !starts.empty() && line.number > *starts.begin() && !starts.contains(line.number);
        if (isContinuation) {
            findInContinuation(file, line, findings);
        }
    }
}

}  // namespace

void findInLines(const Examination& examination, Findings& findings) {
    for (const PropertyFile& file : examination.files) {
        findCarriageReturns(file, findings);
        findEncoding(file, findings);
        findLongLines(file, findings);
        findOpenEnd(file, findings);
        findInEntries(file, findings);
    }
}

}  // namespace rcp::inspect
