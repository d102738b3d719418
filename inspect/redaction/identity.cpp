#include "inspect/redaction/identity.h"

#include "inspect/check/report.h"
#include "inspect/making.h"
#include "inspect/redaction/escaped_text.h"
#include "inspect/redaction/ordinary_words.h"
#include "platform/files.h"

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace rcp::inspect {
namespace {

constexpr char kUser[] = "<user>";
// Where homes are. Others that only hold a folder "home" hold anything.
constexpr std::string_view kHomes[] = {"/home/",     "/Users/",    "/export/home/",
                                       "/var/home/", "/usr/home/", "/net/home/"};

using Count = std::function<void(const char*)>;

enum class LetterCase { kCounts, kIsFree };

bool isWordCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

bool isSameLetter(char left, char right) {
    return std::tolower(static_cast<unsigned char>(left)) ==
           std::tolower(static_cast<unsigned char>(right));
}

void addIfAny(std::vector<std::string>& list, const char* text) {
    std::string word = text == nullptr ? "" : text;
    while (word.size() > 1 && word.ends_with('/')) {
        word.pop_back();
    }
    if (word.size() > 1 && !isOwnName(word) &&
        std::find(list.begin(), list.end(), word) == list.end()) {
        list.push_back(std::move(word));
    }
}

// A home may be reached by links: paths are told as they are given and as they are.
void addHome(std::vector<std::string>& homes, const char* home) {
    addIfAny(homes, home);
    std::error_code failed;
    const std::string real = std::filesystem::canonical(home == nullptr ? "" : home, failed);
    if (!failed) {
        addIfAny(homes, real.c_str());
    }
}

void addUser(Identity& identity, const passwd* user) {
    if (user != nullptr) {
        addIfAny(identity.users, user->pw_name);
        addHome(identity.homes, user->pw_dir);
    }
}

std::size_t findWord(std::string_view text, std::string_view word, std::size_t from,
                     LetterCase letters) {
    if (letters == LetterCase::kCounts) {
        return text.find(word, from);
    }
    const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                   word.begin(), word.end(), isSameLetter);
    return found == text.end() ? std::string_view::npos
                               : static_cast<std::size_t>(found - text.begin());
}

void replaceWord(std::string& text, const std::string& word, const std::string& by,
                 const char* what, const Count& count, LetterCase letters = LetterCase::kCounts) {
    for (std::size_t at = findWord(text, word, 0, letters); at != std::string::npos;
         at = findWord(text, word, at, letters)) {
        if (isWord(text, at, at + word.size())) {
            text.replace(at, word.size(), by);
            count(what);
            at += by.size();
        } else {
            ++at;
        }
    }
}

// With other characters than ASCII's it stands otherwise in property files, and in addresses.
void replaceInEveryForm(std::string& text, const std::string& word, const std::string& by,
                        const char* what, const Count& count) {
    replaceWord(text, word, by, what, count);
    for (const std::string& form : {writtenForm(word), uriOf(word)}) {
        if (form != word) {  // whose digits are in either case
            replaceWord(text, form, by, what, count, LetterCase::kIsFree);
        }
    }
}

// Names of users are in small letters, so what is in capitals is a domain's: "/home/ACME/joe".
bool isDomain(std::string_view name) {
    const auto isSmall = [](unsigned char character) { return std::islower(character) != 0; };
    const auto isCapital = [](unsigned char character) { return std::isupper(character) != 0; };
    return std::none_of(name.begin(), name.end(), isSmall) &&
           std::any_of(name.begin(), name.end(), isCapital);
}

// The homes of others in such a folder, whose names are told apart by their digests.
void replaceHomes(std::string& text, std::string_view homes, const Salt& salt, const Count& count) {
    for (std::size_t at = text.find(homes); at != std::string::npos;
         at = text.find(homes, at + 1)) {
        bool isInDomain = at == 0 || !isWordCharacter(text[at - 1]);
        for (std::size_t begin = at + homes.size(); isInDomain && begin < text.size();) {
            const std::size_t end =
                std::min(text.find_first_of("/:;,\"'<>() \t\n", begin), text.size());
            const std::string name = text.substr(begin, end - begin);
            if (name.empty()) {
                break;
            }
            const std::string user = "<user:" + saltedDigest(salt, name) + ">";
            count("home folder of another user");
            text.replace(begin, name.size(), user);
            begin += user.size() + 1;
            isInDomain = isDomain(name) && text[begin - 1] == '/';
        }
    }
}

// Where his home is those of others are: "/home/acme/".
bool isBelowHomes(std::string_view folder) {
    return std::any_of(std::begin(kHomes), std::end(kHomes),
                       [&](std::string_view homes) { return folder.starts_with(homes); });
}

}  // namespace

bool isWord(std::string_view text, std::size_t begin, std::size_t end) {
    return (begin == 0 || !isWordCharacter(text[begin - 1])) &&
           (end >= text.size() || !isWordCharacter(text[end]));
}

Identity identityOfThisProcess() {
    Identity identity;
    for (const char* name : {"USER", "LOGNAME", "SUDO_USER"}) {
        addIfAny(identity.users, getenv(name));
    }
    addHome(identity.homes, getenv("HOME"));
    addUser(identity, getpwuid(geteuid()));
    if (const char* name = getenv("SUDO_USER"); name != nullptr) {
        addUser(identity, getpwnam(name));
    }
    const std::string host = hostName();
    addIfAny(identity.hosts, host.c_str());
    addIfAny(identity.hosts, host.substr(0, host.find('.')).c_str());
    // A home may hold another; the inner one is looked for first.
    std::sort(identity.homes.begin(), identity.homes.end(),
              [](const std::string& left, const std::string& right) {
                  return left.size() > right.size();
              });
    return identity;
}

std::string withoutIdentity(std::string text, const Identity& identity, const Salt& salt,
                            const Count& count) {
    for (const std::string& home : identity.homes) {
        replaceInEveryForm(text, home, std::string(kHomes[0]) + kUser, "home folder", count);
    }
    for (const std::string& user : identity.users) {
        replaceInEveryForm(text, user, kUser, "user name", count);
    }
    for (const std::string& host : identity.hosts) {
        replaceWord(text, host, "<host>", "host name", count, LetterCase::kIsFree);
    }
    for (const std::string& home : identity.homes) {
        const std::string folder = home.substr(0, home.rfind('/') + 1);
        if (isBelowHomes(folder)) {
            replaceHomes(text, folder, salt, count);
        }
    }
    for (const std::string_view homes : kHomes) {
        replaceHomes(text, homes, salt, count);
    }
    return text;
}

}  // namespace rcp::inspect
