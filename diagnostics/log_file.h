// The open log file and the queue in front of it: where a finished record goes.
#pragma once

#include <string>
#include <string_view>

namespace rcp {

/// Appends `text` to the log file when one is open, to the queue otherwise. A record that the file
/// system refuses is lost; there is nobody left to tell.
void writeToLog(std::string_view text);

/// The same without any memory of its own: the queue stays behind, and where no log file is open
/// the temporary log becomes the text alone.
void writeLastWords(std::string_view text);

/// Whether a log file is open.
bool logIsOpen();

}  // namespace rcp
