#include "inspect/redaction/text_rules.h"

#include "inspect/redaction/bare_secrets.h"
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

}  // namespace

std::vector<SecretPart> secretsIn(std::string_view text, const SecretNames& names) {
    constexpr std::string_view kSigns = "=:>,@- \n";
    std::vector<SecretPart> parts;
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
    return merged(std::move(parts));
}

bool isHarmless(std::string_view name, std::string_view value) {
    constexpr std::string_view kNothing[] = {"", "none", "null", "(not set)", "not set"};
    constexpr std::string_view kSwitches[] = {"true", "false", "yes", "no", "on", "off"};
    const bool isPlaceholder =
        value.starts_with("${") && value.find('}') == value.size() - 1 && value.find(',') == kNone;
    const bool isChange = value.starts_with("(not set)") && value.find(kMark) != kNone;
    return isPlaceholder || isChange || value.starts_with(kMark) || isOneOf(kNothing, value) ||
           (isOneOf(kSwitches, value) && !SecretNames::isPlainlySecret(name));
}

}  // namespace rcp::inspect
