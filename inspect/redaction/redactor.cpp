#include "inspect/redaction/redactor.h"

#include "inspect/making.h"
#include "inspect/redaction/text_rules.h"
#include "launcher/vocabulary/property_keys.h"
#include "platform/text.h"

#include <pwd.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <utility>

namespace rcp::inspect {
namespace {

constexpr std::size_t kShortest = 4;  // what is shorter is redacted in its own place alone
constexpr std::size_t kOwnWord = 8;   // what is shorter must stand as a word
constexpr std::string_view kHomes[] = {"/home/", "/Users/"};
constexpr char kUser[] = "<user>";

bool isWordCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

bool isWord(std::string_view text, std::size_t begin, std::size_t end) {
    return (begin == 0 || !isWordCharacter(text[begin - 1])) &&
           (end >= text.size() || !isWordCharacter(text[end]));
}

std::uint32_t firstBytes(std::string_view text) {
    std::uint32_t bytes = 0;
    memcpy(&bytes, text.data(), kShortest);
    return bytes;
}

// The superuser's, or a word of the system's own: "vm" says nothing of the machine that has it for a name.
bool isNobodys(const std::string& word) {
    constexpr std::string_view kWords[] = {"root",  "/root",   "localhost", "localhost.localdomain",
                                           "user",  "main",    "launcher",  "rcplauncher",
                                           "check", "explain", "doctor"};
    if (std::find(std::begin(kWords), std::end(kWords), word) != std::end(kWords)) {
        return true;
    }
    const auto keys = propertyKeys();
    return std::any_of(keys.begin(), keys.end(), [&](const PropertyKey& known) {
        const auto words = wordsOf(toNarrow(std::wstring(known.key)));
        return std::find(words.begin(), words.end(), word) != words.end();
    });
}

void addIfAny(std::vector<std::string>& list, const char* text) {
    std::string word = text == nullptr ? "" : text;
    while (word.size() > 1 && word.ends_with('/')) {
        word.pop_back();
    }
    if (word.size() > 1 && !isNobodys(word) &&
        std::find(list.begin(), list.end(), word) == list.end()) {
        list.push_back(std::move(word));
    }
}

}  // namespace

Identity identityOfThisProcess() {
    Identity identity;
    const passwd* user = getpwuid(geteuid());
    for (const char* name : {"USER", "LOGNAME", "SUDO_USER"}) {
        addIfAny(identity.users, getenv(name));
    }
    addIfAny(identity.homes, getenv("HOME"));
    if (user != nullptr) {
        addIfAny(identity.users, user->pw_name);
        addIfAny(identity.homes, user->pw_dir);
    }
    const std::string host = hostName();
    addIfAny(identity.hosts, host.c_str());
    addIfAny(identity.hosts, host.substr(0, host.find('.')).c_str());
    return identity;
}

Redactor::Redactor(const Salt& salt, Identity identity)
    : salt_(salt), identity_(std::move(identity)) {}

// --- Learning ---------------------------------------------------------------------------------------

void Redactor::learn(std::string_view text) {
    for (const SecretPart& part : secretsIn(text, names_)) {
        learnValue(part.name, text.substr(part.begin, part.end - part.begin));
    }
}

void Redactor::learn(std::string_view name, std::string_view value) {
    if (names_.isSecret(name)) {
        learnValue(std::string(name), value);
    }
}

// A value of several lines may be shown line by line, and one of a URL without its user.
void Redactor::learnValue(const std::string& name, std::string_view value) {
    const auto add = [&](std::string_view part) {
        const auto begin = part.find_first_not_of(" \t#!\\");
        part.remove_prefix(std::min(begin, part.size()));
        part = part.substr(0, part.find_last_not_of(" \t\r\\") + 1);
        if (part.size() < kShortest || isHarmless(part) || part.starts_with("-----") ||
            part.find("-----END") != kNone) {
            return;
        }
        const auto [at, isNew] = known_.try_emplace(std::string(part), name);
        if (isNew) {
            auto& same = index_[firstBytes(part)];
            same.insert(
                std::find_if(same.begin(), same.end(),
                             [&](const std::string* one) { return one->size() < part.size(); }),
                &at->first);
        }
    };
    add(value);
    if (const std::size_t colon = value.find(':'); name.starts_with("user-info")) {
        add(colon == kNone ? value : value.substr(colon + 1));
    }
    for (const std::string_view separator : {"\n", "\\n"}) {
        for (std::size_t at = 0, end = value.find(separator); end != kNone || at > 0;
             end = value.find(separator, at)) {
            add(value.substr(at, end - at));
            if (end == kNone) {
                break;
            }
            at = end + separator.size();
        }
    }
}

// --- Redacting --------------------------------------------------------------------------------------

std::string Redactor::mark(const std::string& name, std::string_view value) {
    const std::string digest = saltedDigest(salt_, value);
    ++counts_[{withoutIdentity(name), digest}];
    return std::string(kMark) + digest + ">";
}

const std::string* Redactor::knownAt(std::string_view text, std::size_t at) const {
    const auto same = index_.find(firstBytes(text.substr(at)));
    if (same == index_.end()) {
        return nullptr;
    }
    const auto found =
        std::find_if(same->second.begin(), same->second.end(), [&](const std::string* one) {
            return text.substr(at).starts_with(*one) &&
                   (one->size() >= kOwnWord || isWord(text, at, at + one->size()));
        });
    return found == same->second.end() ? nullptr : *found;
}

std::string Redactor::withoutKnown(std::string_view text) {
    std::string result;
    std::size_t copied = 0;
    for (std::size_t at = 0; !index_.empty() && at + kShortest <= text.size(); ++at) {
        if (const std::string* value = knownAt(text, at)) {
            result.append(text.substr(copied, at - copied));
            result += mark(known_.at(*value), *value);
            copied = at + value->size();
            at = copied - 1;
        }
    }
    return result.append(text.substr(copied));
}

void Redactor::replaceWord(std::string& text, const std::string& word, const std::string& by,
                           const char* what) {
    for (std::size_t at = text.find(word); at != kNone; at = text.find(word, at)) {
        if (isWord(text, at, at + word.size())) {
            text.replace(at, word.size(), by);
            ++counts_[{what, ""}];
            at += by.size();
        } else {
            ++at;
        }
    }
}

// The homes of others, whose names are told apart by their digests.
void Redactor::replaceHomes(std::string& text) {
    for (const std::string_view homes : kHomes) {
        for (std::size_t at = text.find(homes); at != kNone; at = text.find(homes, at + 1)) {
            const std::size_t begin = at + homes.size();
            const std::size_t end =
                std::min(text.find_first_of("/:;,\"'<>() \t\n", begin), text.size());
            if (end > begin && (at == 0 || !isWordCharacter(text[at - 1]))) {
                const std::string user =
                    "<user:" + saltedDigest(salt_, text.substr(begin, end - begin));
                ++counts_[{"home folder of another user", ""}];
                text.replace(begin, end - begin, user + ">");
            }
        }
    }
}

std::string Redactor::withoutIdentity(std::string text) {
    for (const std::string& home : identity_.homes) {
        replaceWord(text, home, std::string(kHomes[0]) + kUser, "home folder");
    }
    for (const std::string& user : identity_.users) {
        replaceWord(text, user, kUser, "user name");
    }
    for (const std::string& host : identity_.hosts) {
        replaceWord(text, host, "<host>", "host name");
    }
    replaceHomes(text);
    return text;
}

std::string Redactor::redact(std::string_view text) {
    const std::string known = withoutKnown(text);
    const std::string_view rest = known;
    std::string result;
    std::size_t copied = 0;
    for (const SecretPart& part : secretsIn(rest, names_)) {
        result.append(rest.substr(copied, part.begin - copied));
        result += mark(part.name, rest.substr(part.begin, part.end - part.begin));
        copied = part.end;
    }
    return withoutIdentity(result.append(rest.substr(copied)));
}

// --- What was redacted ------------------------------------------------------------------------------

Redactor::Json Redactor::redactions() const {
    Json told = Json::array();
    for (const auto& [what, count] : counts_) {
        const auto& [name, digest] = what;
        told.push_back(
            {{"name", name}, {"digest", digest.empty() ? Json() : Json(digest)}, {"count", count}});
    }
    return told;
}

std::string Redactor::redactionsText() const {
    std::string text;
    for (const auto& [what, count] : counts_) {
        const auto& [name, digest] = what;
        text.append(name).append(digest.empty() ? "" : " ").append(digest).append(", ");
        text.append(std::to_string(count)).append(count == 1 ? " time\n" : " times\n");
    }
    return text;
}

}  // namespace rcp::inspect
