#include "inspect/redaction/ordinary_words.h"

#include "inspect/check/finding.h"
#include "inspect/messages.h"
#include "inspect/redaction/secret_names.h"
#include "launcher/vocabulary/options.h"
#include "launcher/vocabulary/property_keys.h"
#include "platform/text.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace rcp::inspect {
namespace {

using OwnWords = std::set<std::string, std::less<>>;

constexpr std::size_t kShortestValue = 4;
constexpr std::size_t kShortestWord = 6;

// Of folders, programs, commands, and of names that every machine has.
constexpr std::string_view kOwnNames[] = {
    "root",   "/root",   "localhost",    "localhost.localdomain",
    "user",   "main",    "launcher",     "rcplauncher",
    "check",  "explain", "doctor",       "rcpinspect",
    "java",   "javac",   "jvm",          "jre",
    "jdk",    "openjdk", "osgi",         "equinox",
    "bin",    "lib",     "share",        "local",
    "opt",    "usr",     "var",          "tmp",
    "home",   "plugins", "features",     "workspace",
    "config", "status",  "report",       "diff",
    "linux",  "debian",  "configuration"};

void addWords(OwnWords& words, std::string_view text) {
    for (std::string& word : wordsOf(text)) {
        words.insert(std::move(word));
    }
}

// "rcp.data" and "-plugincustomization", and their parts.
OwnWords namesOfTheSystem() {
    OwnWords names(std::begin(kOwnNames), std::end(kOwnNames));
    for (const PropertyKey& known : propertyKeys()) {
        addWords(names, toNarrow(std::wstring(known.key)));
    }
    return names;
}

OwnWords wordsOfTheSystem() {
    OwnWords words = namesOfTheSystem();
    for (const Option& option : kOptions) {
        addWords(words, toNarrow(std::wstring(option.name)));
    }
    for (const PropertyKey& known : propertyKeys()) {
        addWords(words, known.usage);
    }
    for (const MessageRecord& message : messages()) {
        for (const std::string_view text : {message.text, message.remedy}) {
            addWords(words, text);
        }
    }
    for (const FindingRule& rule : findingRules()) {
        for (const std::string_view text : {rule.name, rule.meaning, rule.remedy}) {
            addWords(words, text);
        }
    }
    return words;
}

std::string inSmallLetters(std::string_view word) {
    std::string small;
    for (const char character : word) {
        small += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
    return small;
}

bool isLetters(std::string_view value) {
    return std::all_of(value.begin(), value.end(),
                       [](unsigned char character) { return std::isalpha(character) != 0; });
}

}  // namespace

bool isDistinctive(std::string_view value) {
    const bool isNumber = value.find_first_not_of("0123456789") == std::string_view::npos;
    if (value.size() < kShortestValue) {
        return false;
    }
    if (!isNumber && !isLetters(value)) {
        return true;
    }
    static const OwnWords kWords = wordsOfTheSystem();
    return value.size() >= kShortestWord && !kWords.contains(inSmallLetters(value)) &&
           !SecretNames().isSecret(value);
}

bool isOwnName(std::string_view name) {
    static const OwnWords kNames = namesOfTheSystem();
    return kNames.contains(name);
}

}  // namespace rcp::inspect
