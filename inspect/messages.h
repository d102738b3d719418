// The launcher's messages with their causes and remedies: the tables of docs/messages.md, which is
// built into the program as it stands.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

struct Message {
    std::string id;      // "ZYPRA0050E", "ZYPRA0107E begin"; empty for a message without a number
    std::string text;    // with its directives ("%ls"); behind "Error: " where there is no number
    std::string step;    // empty for a message without a number
    std::string remedy;  // cause and remedy
};

/// Every message, in the page's order.
std::span<const Message> messages();

/// The messages that a record of the log can be, the likeliest first: those of its number whose text
/// fits, with anything in place of the directives, whatever follows the text. Where no text fits,
/// all of the number.
std::vector<const Message*> findMessages(std::string_view record);

/// Whether a line of the log begins an error: one with an E number, one without a number, or the end
/// of a list of failures.
bool isErrorRecord(std::string_view line);

}  // namespace rcp::inspect
