// What docs/configuration.md says of the vocabulary. No launch uses it.
#pragma once

#include "launcher/vocabulary/name.h"

#include <span>

namespace rcp {

enum class KeySection { kInstallation, kJvm, kEnvironment, kProvisioning };

struct KeyWords {
    Key key;
    KeySection section;
    const char* meaning;  // "%s" stands for what the launcher takes when the key is missing
    const wchar_t* otherwise = nullptr;
};

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
std::span<const KeyWords> keyWords();
std::span<const OptionWords> optionWords();
std::span<const WrittenOptionWords> writtenOptionWords();
std::span<const PlaceholderWords> placeholderWords();
std::span<const VariableWords> variableWords();

}  // namespace rcp
