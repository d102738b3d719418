// readFile with every format, against fscanf(3) where the two must agree.
//
// Input: a byte that chooses the format (its lowest bit the leading blank, the others the length),
// then the file.
#include "fuzz/fuzz.h"
#include "platform/files.h"
#include "platform/text.h"

#include <algorithm>

namespace {

using namespace rcp;
using rcp::fuzz::require;

struct Line {
    std::wstring text;
    std::size_t number;
};

std::vector<Line> linesOf(const std::string& file, const std::string& format) {
    std::vector<Line> lines;
    TextLines text{file};
    std::wstring line;
    while (readFile(text, toWide(format), line)) {
        lines.push_back({line, text.line});
        require(lines.size() <= file.size(), "every line takes a byte");
    }
    return lines;
}

// The C library's scanner, which stalls on an empty line without the leading blank.
std::vector<std::string> scannedLines(const std::string& file, const std::string& format) {
    const Stream stream = open_file(fuzz::fileWith(file), L"r");
    std::vector<std::string> lines;
    std::string buffer(4096, '\0');
    for (;;) {
        const int items = fscanf(stream.get(), format.c_str(), buffer.data());  // NOLINT
        if (items == 1) {
            lines.emplace_back(buffer.c_str());
        } else if (items == EOF) {
            return lines;
        } else {
            (void)fscanf(stream.get(), " ");  // NOLINT(cert-err34-c)
        }
    }
}

bool isAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c > '\0' && c <= '~'; });
}

std::string withoutBlanks(const std::string& text) {
    std::string rest;
    std::copy_if(text.begin(), text.end(), std::back_inserter(rest),
                 [](char c) { return c != ' ' && (c < '\t' || c > '\r'); });
    return rest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Fields fields(data, size);
    const unsigned choice = fields.number();
    const std::size_t limit = choice >= 128 ? 2024 : choice / 2 + 4;
    const std::string format = (choice % 2 == 0 ? " %" : "%") + std::to_string(limit) + "[^\n]\n";
    const std::string file =
        size == 0 ? "" : std::string(reinterpret_cast<const char*>(data) + 1, size - 1);

    const std::vector<Line> lines = linesOf(file, format);
    std::size_t number = 1;
    std::string together;
    for (const Line& line : lines) {
        require(line.number >= number, "line numbers grow");
        number = line.number;
        const std::string bytes = toNarrow(line.text);
        require(bytes.size() <= limit, "no line is longer than asked for");
        together += bytes;
    }
    require(number <= static_cast<std::size_t>(std::count(file.begin(), file.end(), '\n')) + 1,
            "no line number is beyond the file");
    if (isAscii(file)) {
        const std::vector<std::string> scanned = scannedLines(file, format);
        require(lines.size() == scanned.size(), "as many lines as the C library scans");
        for (std::size_t i = 0; i < lines.size(); ++i) {
            require(toNarrow(lines[i].text) == scanned[i], "the lines that the C library scans");
        }
    }
    // A file that is text as a whole is read without loss, wherever its lines are cut.
    if (!toWide(file).empty() && file.find('\0') == std::string::npos) {
        require(withoutBlanks(together) == withoutBlanks(file), "nothing of the text is lost");
    }
    fuzz::requireLinearTime(fuzz::wide(file), [&format](const std::wstring& large) {
        (void)linesOf(toNarrow(large), format);
    });
    return 0;
}
