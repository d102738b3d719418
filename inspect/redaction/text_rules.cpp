#include "inspect/redaction/text_rules.h"

#include "inspect/redaction/bare_secrets.h"
#include "inspect/redaction/escaped_text.h"
#include "inspect/redaction/named_values.h"

#include <algorithm>
#include <utility>

namespace rcp::inspect {
namespace {

std::vector<SecretPart> merged(std::vector<SecretPart> parts) {
    std::stable_sort(
        parts.begin(), parts.end(), [](const SecretPart& left, const SecretPart& right) {
            return left.begin != right.begin ? left.begin < right.begin : left.end > right.end;
        });
    std::vector<SecretPart> result;
    for (SecretPart& part : parts) {
        if (result.empty() || part.begin >= result.back().end) {
            result.push_back(std::move(part));
        } else {
            result.back().end = std::max(result.back().end, part.end);
        }
    }
    return result;
}

// Whether nothing is left of it but marks, and what the texts of rcpinspect say between two of them.
bool isRedacted(std::string_view value) {
    constexpr std::string_view kBetween[] = {
        "",     " becomes ",     "(not set) becomes ", " becomes (not set)",
        " -> ", "(not set) -> ", " -> (not set)"};
    std::string rest;
    std::size_t begin = 0;
    for (std::size_t at = value.find(kMark); at != kNone; at = value.find(kMark, begin)) {
        rest += value.substr(begin, at - begin);
        begin = std::min(value.find('>', at), value.size() - 1) + 1;
    }
    return begin > 0 && isOneOf(kBetween, rest.append(value.substr(begin)));
}

void findAll(std::string_view text, const SecretNames& names, std::vector<SecretPart>& parts) {
    constexpr std::string_view kSigns = "=:>,@- \n";
    NamedValues values(text, names, parts);
    for (std::size_t at = text.find_first_of(kSigns); at != kNone;
         at = text.find_first_of(kSigns, at + 1)) {
        if (text[at] == '@') {
            findUserInfo(text, at, parts);
        } else if (text[at] == '-') {
            findPem(text, at, parts);
        } else {
            values.findAt(at);
        }
    }
    findPrefixed(text, "Bearer ", "bearer token", parts);
    findBareKeys(text, parts);
}

// A line of a property file has "-Ddb.password\=..." where the launcher has written it.
void findEscaped(std::string_view text, const SecretNames& names, std::vector<SecretPart>& parts) {
    const PlainText plain = plainText(text);
    std::vector<SecretPart> found;
    findAll(plain.text, names, found);
    for (SecretPart& part : found) {
        parts.push_back({plain.places[part.begin], plain.places[part.end], std::move(part.name)});
    }
}

}  // namespace

std::vector<SecretPart> secretsIn(std::string_view text, const SecretNames& names) {
    std::vector<SecretPart> parts;
    findAll(text, names, parts);
    if (text.find('\\') != kNone) {
        findEscaped(text, names, parts);
    }
    return merged(std::move(parts));
}

bool isHarmless(std::string_view name, std::string_view value) {
    constexpr std::string_view kNothing[] = {"", "none", "null", "(not set)", "not set"};
    constexpr std::string_view kSwitches[] = {"true", "false", "yes", "no", "on", "off"};
    const bool isPlaceholder =
        value.starts_with("${") && value.find('}') == value.size() - 1 && value.find(',') == kNone;
    return isPlaceholder || isRedacted(value) || isOneOf(kNothing, value) ||
           (isOneOf(kSwitches, value) && !SecretNames::isPlainlySecret(name));
}

}  // namespace rcp::inspect
