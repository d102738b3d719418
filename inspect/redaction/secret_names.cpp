#include "inspect/redaction/secret_names.h"

#include "inspect/check/finding.h"
#include "launcher/vocabulary/property_keys.h"
#include "platform/text.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace rcp::inspect {
namespace {

using Words = std::vector<std::string>;

// Those that are secret however a word ends in them: "dbpassword".
constexpr std::string_view kPlainWords[] = {"password", "passwd", "passphrase", "passcode",
                                            "secret",   "token",  "credential"};
// Those that are only as whole words.
constexpr std::string_view kWholeWords[] = {
    "pwd",    "pw",     "pass",       "key", "keys",  "apikey", "auth",      "authorization", "jwt",
    "cookie", "bearer", "privatekey", "pin", "oauth", "sig",    "signature", "sessionid"};
// Those that are as the end of a longer word too.
constexpr std::string_view kEndings[] = {"secretkey", "accesskey", "authkey",
                                         "dbpass",    "userpass",  "passwort"};
// Behind such a word they say where or of which kind a secret is, and not what it is.
constexpr std::string_view kAbout[] = {
    "store",  "file",    "path",   "dir",     "directory", "folder",   "location", "size",
    "length", "type",    "map",    "mapping", "board",     "binding",  "bindings", "stroke",
    "format", "timeout", "policy", "through", "algorithm", "required", "enabled"};
// Of a shell: the folder it is in.
constexpr std::string_view kNoSecrets[] = {"PWD", "OLDPWD"};
// A secret may be named after them, and they stand everywhere.
constexpr std::string_view kLaunchersVariables[] = {"HOME", "USER", "TMPDIR",
                                                    "PATH", "LANG", "PWD"};

bool isUpper(char character) {
    return std::isupper(static_cast<unsigned char>(character)) != 0;
}
bool isLower(char character) {
    return std::islower(static_cast<unsigned char>(character)) != 0;
}
bool isLetter(char character) {
    return std::isalpha(static_cast<unsigned char>(character)) != 0;
}

// "apiKey" has a word's beginning at "K", and so has "APIKey".
bool beginsWord(std::string_view name, std::size_t at) {
    const bool isBehindLetter = at > 0 && isLetter(name[at - 1]);
    if (!isBehindLetter) {
        return true;
    }
    return isUpper(name[at]) &&
           (isLower(name[at - 1]) || (at + 1 < name.size() && isLower(name[at + 1])));
}

std::string_view singular(std::string_view word) {
    return word.ends_with('s') ? word.substr(0, word.size() - 1) : word;
}

bool isPlainWord(std::string_view word) {
    const auto endsIt = [&](std::string_view known) {
        return word.ends_with(known) || singular(word).ends_with(known);
    };
    return std::any_of(std::begin(kPlainWords), std::end(kPlainWords), endsIt) ||
           std::any_of(std::begin(kEndings), std::end(kEndings), endsIt);
}

// "-Dkey" is the system property "key".
bool isSecretWord(std::string_view word) {
    return isPlainWord(word) || isOneOf(kWholeWords, word) ||
           isOneOf(kWholeWords, singular(word)) ||
           (word.starts_with('d') && isOneOf(kWholeWords, word.substr(1)));
}

template <typename Condition>
bool hasSecretWord(const Words& words, Condition isSecret) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (isSecret(words[i]) && (i + 1 == words.size() || !isOneOf(kAbout, words[i + 1]))) {
            return true;
        }
    }
    return false;
}

// "unread-key: ..." is a line of check.
bool isFinding(std::string_view name) {
    const auto rules = findingRules();
    return std::any_of(rules.begin(), rules.end(),
                       [&](const FindingRule& rule) { return name == rule.name; });
}

}  // namespace

std::vector<std::string> wordsOf(std::string_view name) {
    Words words;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (!isLetter(name[i])) {
            continue;
        }
        if (beginsWord(name, i)) {
            words.emplace_back();
        }
        words.back() += static_cast<char>(std::tolower(static_cast<unsigned char>(name[i])));
    }
    return words;
}

void SecretNames::add(std::string_view list) {
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(','), list.size());
        if (Words words = wordsOf(list.substr(0, end)); !words.empty()) {
            further_.push_back(std::move(words));
        }
        list.remove_prefix(std::min(end + 1, list.size()));
    }
}

void SecretNames::addSourceOf(std::string_view name, std::string_view value) {
    const std::size_t equals = value.find('=');
    if (value.starts_with("-D") && equals != std::string_view::npos) {
        addSourceOf(value.substr(2, equals - 2), value.substr(equals + 1));
    }
    if (!isSecret(name)) {
        return;
    }
    for (std::size_t at = value.find("${"); at != std::string_view::npos;
         at = value.find("${", at + 1)) {
        const std::size_t end = std::min(value.find('}', at), value.size());
        const std::string_view source =
            value.substr(at + 2, std::min(value.find(',', at), end) - at - 2);
        const std::string own(source.substr(source.find('.') + 1));
        const bool isFolder = value.substr(end).starts_with("}/");
        if (!isFolder && !isOneOf(kLaunchersVariables, own) &&
            findPropertyKey(toWide(own)) == nullptr &&
            (source.starts_with("env.") || source.starts_with("prop."))) {
            sources_.insert(sources_.end(), {std::string(source), own});
        }
    }
}

bool SecretNames::isSecret(std::string_view name) const {
    if (isOneOf(kNoSecrets, name) || isFinding(name)) {
        return false;
    }
    const Words words = wordsOf(name);
    return hasSecretWord(words, isSecretWord) || isOneOf(sources_, name) ||
           std::any_of(further_.begin(), further_.end(), [&](const Words& one) {
               return std::search(words.begin(), words.end(), one.begin(), one.end()) !=
                      words.end();
           });
}

bool SecretNames::isPlainlySecret(std::string_view name) {
    return hasSecretWord(wordsOf(name), isPlainWord);
}

bool isUserOption(std::string_view option) {
    constexpr std::string_view kOptions[] = {"-u", "-U", "--user", "--proxy-user"};
    return isOneOf(kOptions, option);
}

bool hasPassword(std::string_view user) {
    const std::size_t colon = user.find(':');
    return colon != std::string_view::npos && colon > 0 && colon + 1 < user.size() &&
           user.find_first_not_of("0123456789:") != std::string_view::npos;
}

}  // namespace rcp::inspect
