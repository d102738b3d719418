// The launcher's messages with their causes and remedies, record by record.
#pragma once

#include "diagnostics/message_records.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

/// Every record, in the order of the numbers.
std::span<const MessageRecord> messages();

/// The messages that a record of the log can be, the likeliest first: those of its number whose text
/// fits, with anything in place of the directives, whatever follows the text. Where no text fits,
/// all of the number.
std::vector<const MessageRecord*> findMessages(std::string_view record);

/// Whether a line of the log begins an error: one with an E number, one without a number, or the end
/// of a list of failures.
bool isErrorRecord(std::string_view line);

}  // namespace rcp::inspect
