#include "inspect/messages.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace rcp::inspect {
namespace {

constexpr std::string_view kNumbered = "ZYPRA";
constexpr std::string_view kUnnumbered = "Error: ";
constexpr std::size_t kNumberLength = 10;  // "ZYPRA0050E"

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
std::optional<std::size_t> likeness(const MessageRecord& message, std::string_view record) {
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

bool hasNumberOf(const MessageRecord& message, std::string_view record) {
    return !message.id.empty() && record.starts_with(message.id) &&
           record.substr(message.id.size()).starts_with(':');
}

}  // namespace

std::span<const MessageRecord> messages() {
    static const std::vector<MessageRecord> all = messageRecords();
    return all;
}

std::vector<const MessageRecord*> findMessages(std::string_view record) {
    const std::string text = withSingleBlanks(record);
    std::vector<std::pair<std::size_t, const MessageRecord*>> fitting;
    std::vector<const MessageRecord*> ofNumber;
    for (const MessageRecord& message : messages()) {
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
    std::vector<const MessageRecord*> result;
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
