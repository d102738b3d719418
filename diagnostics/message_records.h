// The messages record by record, for people. No launch asks for it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rcp {

struct MessageRecord {
    std::string id;      // "ZYPRA0050E", "ZYPRA0107E begin"; empty for a message without a number
    std::string text;    // with its directives ("%ls"); behind "Error: " where there is no number
    std::string step;    // empty for a message without a number
    std::string remedy;  // cause and remedy
};

/// Those of every message, in the order of their numbers; texts have one blank for every run of white space.
std::vector<MessageRecord> messageRecords();

std::string withSingleBlanks(std::string_view text);

}  // namespace rcp
