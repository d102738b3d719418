// What somebody may have meant whose command line is wrong.
#pragma once

#include <string>
#include <vector>

namespace rcp::inspect {

/// "; did you mean WORD?" with the word of `known` that is near; else empty.
std::string suggestion(const std::string& word, const std::vector<std::string>& known);

struct CommandWords {
    std::vector<std::string> commands = {};
    std::vector<std::string> options = {};  // of the command that is given
    std::vector<std::string> valued = {};   // those of them that a value follows
    bool hasCommand = false;
};
/// What is the matter with the first of the words that is no command, or no option of its command. Empty
/// when that is not what is wrong.
std::string wrongWord(const std::vector<std::string>& words, const CommandWords& known);

}  // namespace rcp::inspect
