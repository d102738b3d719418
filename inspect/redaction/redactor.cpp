#include "inspect/redaction/redactor.h"

#include "inspect/redaction/bare_secrets.h"
#include "inspect/redaction/escaped_text.h"
#include "inspect/redaction/ordinary_words.h"
#include "inspect/redaction/text_parts.h"
#include "launcher/properties/property_file.h"
#include "platform/text.h"

#include <string.h>

#include <algorithm>
#include <utility>

namespace rcp::inspect {
namespace {

constexpr std::size_t kShortest = 4;  // what is shorter is not distinctive
constexpr std::size_t kOwnWord = 8;   // what is shorter must stand as a word

std::uint32_t firstBytes(std::string_view text) {
    std::uint32_t bytes = 0;
    memcpy(&bytes, text.data(), kShortest);
    return bytes;
}

}  // namespace

Redactor::Redactor(const Salt& salt, Identity identity)
    : salt_(salt), identity_(std::move(identity)) {}

// --- Learning ---------------------------------------------------------------------------------------

void Redactor::learn(std::string_view text) {
    for (const SecretPart& part : secretsIn(text, names_)) {
        const std::string_view value = text.substr(part.begin, part.end - part.begin);
        learnValue(part.name, value);
        if (value.find('\\') != kNone) {
            learnValue(part.name, readForm(value));
        }
    }
}

void Redactor::learn(std::string_view name, std::string_view value) {
    if (names_.isSecret(name)) {
        const SecretPart part = narrowed(value, {0, value.size(), std::string(name)});
        learnValue(part.name, value.substr(part.begin, part.end - part.begin));
    }
}

void Redactor::learnFile(std::string_view text) {
    learn(text);
    for (std::size_t at = 0; at < text.size(); at = endOfEntry(text, at) + 1) {
        const std::string_view entry = text.substr(at, endOfEntry(text, at) - at);
        learnEntry(entry.substr(std::min(entry.find_first_not_of(" \t#!"), entry.size())));
    }
}

// Commented out or not.
void Redactor::learnEntry(std::string_view entry) {
    const PropertyList read = parseProperties(entry, {});
    if (read.entries().empty()) {
        return;
    }
    const std::string key = toNarrow(read.entries().front().key);
    const std::string value = toNarrow(read.entries().front().value);
    const std::string option = value.substr(0, value.starts_with('-') ? value.find('=') : 0);
    std::vector<SecretPart> parts;
    if (names_.isSecret(key)) {
        addPart(parts, value, {0, value.size(), key});
    } else if (option.size() < value.size() && names_.isSecret(option)) {
        addPart(parts, value, {option.size() + 1, value.size(), option});
    } else {
        parts = secretsIn(value, names_);
    }
    for (const SecretPart& part : parts) {
        const SecretPart written = partOfEntry(entry, value, part);
        const std::string_view secret = entry.substr(written.begin, written.end - written.begin);
        plain_.try_emplace(std::string(secret), value.substr(part.begin, part.end - part.begin));
        learnValue(part.name, secret);
        if (!isDistinctive(secret)) {
            learnWithin(entry, written);
        }
    }
}

// A value of several lines may be shown line by line, and one of a URL without its user.
void Redactor::learnValue(const std::string& name, std::string_view value) {
    const auto add = [&](std::string_view part) {
        const auto begin = part.find_first_not_of(" \t#!\\");
        part.remove_prefix(std::min(begin, part.size()));
        part = part.substr(0, part.find_last_not_of(" \t\r\\") + 1);
        if (!isHarmless(name, part) && !part.starts_with("-----") &&
            part.find("-----END") == kNone) {
            learnWithin(part, {0, part.size(), name});
            const std::string written = writtenForm(part);
            learnWithin(written, {0, written.size(), name});
            if (written != part) {
                plain_.try_emplace(written, part);
            }
        }
    };
    add(value);
    if (const std::size_t end = value.find_first_of(":/"); name.starts_with("user-info")) {
        add(end == kNone ? value : value.substr(end + 1));
    }
    for (const std::string_view separator : {"\n", "\\n"}) {
        for (std::size_t at = 0, end = value.find(separator); end != kNone || at > 0;
             end = value.find(separator, at)) {
            add(value.substr(at, end - at));
            add(keyIn(value.substr(at, end - at)));
            if (end == kNone) {
                break;
            }
            at = end + separator.size();
        }
    }
}

// A text of which a part is secret, such as "-Dx=java/y", tells by what is around that part where it stands.
void Redactor::learnWithin(std::string_view text, const SecretPart& part) {
    if (part.begin >= part.end || !isDistinctive(text)) {
        return;
    }
    known_.try_emplace(std::string(text), part);
    lengths_[firstBytes(text)].insert(text.size());
}

// --- Redacting --------------------------------------------------------------------------------------

std::string Redactor::mark(const std::string& name, std::string_view value) {
    const auto plain = plain_.find(value);
    const std::string digest = saltedDigest(salt_, plain == plain_.end() ? value : plain->second);
    ++counts_[{withoutIdentity(name), digest}];
    return std::string(kMark) + digest + ">";
}

const Redactor::Known* Redactor::knownAt(std::string_view text, std::size_t at) const {
    const auto lengths = lengths_.find(firstBytes(text.substr(at)));
    if (lengths == lengths_.end()) {
        return nullptr;
    }
    for (const std::size_t length : lengths->second) {
        const auto known =
            at + length <= text.size() ? known_.find(text.substr(at, length)) : known_.end();
        if (known != known_.end() && (length >= kOwnWord || isWord(text, at, at + length))) {
            return &*known;
        }
    }
    return nullptr;
}

std::string Redactor::withoutKnown(std::string_view text) {
    std::string result;
    std::size_t copied = 0;
    for (std::size_t at = 0; !known_.empty() && at + kShortest <= text.size(); ++at) {
        if (const Known* known = knownAt(text, at)) {
            const auto& [value, part] = *known;
            result.append(text.substr(copied, at + part.begin - copied));
            result +=
                mark(part.name, std::string_view(value).substr(part.begin, part.end - part.begin));
            copied = at + part.end;
            at = copied - 1;
        }
    }
    return result.append(text.substr(copied));
}

std::string Redactor::withoutIdentity(std::string text) {
    return rcp::inspect::withoutIdentity(std::move(text), identity_, salt_,
                                         [this](const char* what) {
                                             ++counts_[{what, ""}];
                                         });
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
