#include "diagnostics/message_records.h"

#include "diagnostics/messages.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>

namespace rcp {
namespace {

constexpr std::string_view kNumbered = "ZYPRA";
constexpr std::string_view kUnnumbered = "Error: ";

// Takes the first line off a text.
std::string_view nextLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

// A message of several records has a step and a remedy for each; the list between them has none.
void appendRecords(const MessageRow& row, std::vector<MessageRecord>& records) {
    std::string_view lines = row.format;
    std::string_view steps = row.step;
    std::string_view remedies = row.remedy;
    while (!lines.empty()) {
        const std::string_view line = nextLine(lines);
        if (line.starts_with(kNumbered)) {
            const std::size_t colon = line.find(':');
            records.push_back({std::string(line.substr(0, colon)),
                               withSingleBlanks(line.substr(colon + 1)),
                               std::string(nextLine(steps)), std::string(nextLine(remedies))});
        } else if (line.starts_with(kUnnumbered)) {
            records.push_back({{}, withSingleBlanks(line), {}, std::string(nextLine(remedies))});
        }
    }
}

}  // namespace

std::vector<MessageRecord> messageRecords() {
    std::vector<MessageRecord> records;
    // A message is its row, whatever arguments it takes.
    const auto rows =
        std::bit_cast<std::array<MessageRow, sizeof(Messages) / sizeof(MessageRow)>>(messages);
    for (const MessageRow& row : rows) {
        appendRecords(row, records);
    }
    return records;
}

std::string withSingleBlanks(std::string_view text) {
    std::string result;
    for (const char character : text) {
        const bool isBlank = std::isspace(static_cast<unsigned char>(character)) != 0;
        if (!isBlank) {
            result += character;
        } else if (!result.empty() && result.back() != ' ') {
            result += ' ';
        }
    }
    if (result.ends_with(' ')) {
        result.pop_back();
    }
    return result;
}

}  // namespace rcp
