// What docs/configuration.md says of options, placeholders and variables. No launch uses it; the
// words of the keys are in their table.
#pragma once

#include "launcher/vocabulary/name.h"

#include <span>

namespace rcp {

/// Who writes an option, and so where it is told: whoever starts the launcher at a terminal finds
/// his in the manual page and completed by the shell.
enum class Writer { kOthers, kUser };

struct OptionWords {
    OptionName name;
    const char* value;  // "DIR"
    const char* meaning;
    const char* isPassedOn;
    Writer writer = Writer::kOthers;
};

/// What the launcher puts into the command line itself.
struct WrittenOptionWords {
    OptionName name;
    const char* when;
};

struct PlaceholderWords {
    std::wstring_view text;
    const char* meaning;
};

struct VariableWords {
    VariableName name;
    const char* isRead;
    const char* isSet;
};

// In the order of the document.
std::span<const OptionWords> optionWords();
std::span<const WrittenOptionWords> writtenOptionWords();
std::span<const PlaceholderWords> placeholderWords();
std::span<const VariableWords> variableWords();

}  // namespace rcp
