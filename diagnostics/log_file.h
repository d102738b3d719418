// The open log file and the queue in front of it: where a finished record goes.
#pragma once

#include <string>
#include <string_view>

namespace rcp {

/// Appends `text` to the log file when one is open, to the queue otherwise. From the first record on
/// that the file system refuses, all go to the queue as well.
void writeToLog(std::string_view text);

/// The same without any memory of its own: the queue stays behind, and where no log file takes it
/// the temporary log becomes the text alone.
void writeLastWords(std::string_view text);

/// Whether a log file is open.
bool logIsOpen();

/// Whether a log file is open and has taken every record.
bool logHasAll();

}  // namespace rcp
