#include "inspect/messages.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace rcp::inspect {
namespace {

constexpr std::string_view kPage =
#include "messages_page.inc"
    ;

constexpr std::string_view kNumbered = "ZYPRA";
constexpr std::string_view kUnnumbered = "Error: ";
constexpr std::size_t kNumberLength = 10;  // "ZYPRA0050E"

// The page's rows, and the records, with one blank for every run of white space: a table cannot show
// more.
std::string squeezed(std::string_view text) {
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

// "| a | b |" as its cells; empty for a line that is no row.
std::vector<std::string> cellsOf(std::string_view line) {
    std::vector<std::string> cells;
    if (!line.starts_with("| ")) {
        return cells;
    }
    line.remove_prefix(1);
    for (std::size_t end = 0; (end = line.find('|')) != std::string_view::npos;) {
        cells.push_back(squeezed(line.substr(0, end)));
        line.remove_prefix(end + 1);
    }
    return cells;
}

std::optional<Message> messageOf(const std::vector<std::string>& cells) {
    if (cells.size() == 4 && cells[0].starts_with(kNumbered)) {
        return Message{cells[0], cells[1], cells[2], cells[3]};
    }
    if (cells.size() == 2 && cells[0].starts_with(kUnnumbered)) {
        return Message{{}, cells[0], {}, cells[1]};
    }
    return std::nullopt;
}

std::vector<Message> readPage(std::string_view page) {
    std::vector<Message> result;
    while (!page.empty()) {
        const std::size_t end = std::min(page.find('\n'), page.size());
        if (std::optional<Message> message = messageOf(cellsOf(page.substr(0, end)))) {
            result.push_back(std::move(*message));
        }
        page.remove_prefix(std::min(end + 1, page.size()));
    }
    return result;
}

// The parts of a text between its directives.
std::vector<std::string_view> literalParts(std::string_view text) {
    std::vector<std::string_view> parts;
    std::size_t begin = 0;
    for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at)) {
        parts.push_back(text.substr(begin, at - begin));
        at = text.find_first_of("sdu", at);
        begin = at == std::string_view::npos ? text.size() : at + 1;
        at = begin;
    }
    parts.push_back(text.substr(begin));
    return parts;
}

// How many of the message's own characters the record shows; none when it is another message's.
std::optional<std::size_t> likeness(const Message& message, std::string_view record) {
    const std::string expected =
        message.id.empty() ? message.text : message.id + ": " + message.text;
    std::size_t count = 0;
    std::size_t from = 0;
    for (const std::string_view part : literalParts(expected)) {
        const std::size_t at = record.find(part, from);
        if (at == std::string_view::npos || (from == 0 && at != 0)) {
            return std::nullopt;
        }
        from = at + part.size();
        count += part.size();
    }
    return count;
}

bool hasNumberOf(const Message& message, std::string_view record) {
    return !message.id.empty() && record.starts_with(message.id) &&
           record.substr(message.id.size()).starts_with(':');
}

}  // namespace

std::span<const Message> messages() {
    static const std::vector<Message> all = readPage(kPage);
    return all;
}

std::vector<const Message*> findMessages(std::string_view record) {
    const std::string text = squeezed(record);
    std::vector<std::pair<std::size_t, const Message*>> fitting;
    std::vector<const Message*> ofNumber;
    for (const Message& message : messages()) {
        if (const std::optional<std::size_t> count = likeness(message, text)) {
            fitting.emplace_back(*count, &message);
        }
        if (hasNumberOf(message, text)) {
            ofNumber.push_back(&message);
        }
    }
    if (fitting.empty()) {
        return ofNumber;
    }
    std::stable_sort(fitting.begin(), fitting.end(),
                     [](const auto& left, const auto& right) { return left.first > right.first; });
    std::vector<const Message*> result;
    result.reserve(fitting.size());
    for (const auto& [count, message] : fitting) {
        result.push_back(message);
    }
    return result;
}

bool isErrorRecord(std::string_view line) {
    if (line.starts_with(kUnnumbered)) {
        return true;
    }
    if (!line.starts_with(kNumbered) || line.size() < kNumberLength) {
        return false;
    }
    return line[kNumberLength - 1] == 'E' || line.substr(kNumberLength).starts_with(" end:");
}

}  // namespace rcp::inspect
