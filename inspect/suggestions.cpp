#include "inspect/suggestions.h"

#include "inspect/check/near_keys.h"
#include "platform/text.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

// One slip in four characters, as many as anybody makes in a word that he knows.
constexpr std::size_t kCharactersASlip = 3;

bool isOne(const std::vector<std::string>& words, const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// "--format html FILE" has two.
bool isValue(const std::vector<std::string>& words, std::size_t at, const CommandWords& known) {
    return isOne(known.valued, words[at - 1]) || (at > 1 && words[at - 2] == "--format");
}

}  // namespace

std::string suggestion(const std::string& word, const std::vector<std::string>& known) {
    const std::string* nearest = nullptr;
    std::size_t best = word.size() / kCharactersASlip + 1;
    for (const std::string& one : known) {
        const std::size_t distance = editDistance(toWide(word), toWide(one), best);
        if (distance < best) {
            best = distance;
            nearest = &one;
        }
    }
    return nearest == nullptr ? std::string() : "; did you mean " + *nearest + "?";
}

std::string wrongWord(const std::vector<std::string>& words, const CommandWords& known) {
    if (!known.hasCommand) {
        return words.empty() ? std::string()
                             : "'" + words.front() + "' is no command" +
                                   suggestion(words.front(), known.commands);
    }
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string name = words[i].substr(0, words[i].find('='));
        if (name.starts_with("--") && !isOne(known.options, name)) {
            return "'" + name + "' is no option of " + words.front() +
                   suggestion(name, known.options);
        }
        if (name.starts_with('-') && name.size() > 1 && !isOne(known.options, name)) {
            return "'" + words[i] +
                   "' looks like an argument of the launcher; those stand behind \"--\"";
        }
        if (!name.starts_with('-') && !isValue(words, i, known)) {
            return "'" + words[i] +
                   "' is one argument too many; the launcher's stand behind \"--\"";
        }
    }
    return {};
}

}  // namespace rcp::inspect
