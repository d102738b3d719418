// Where secrets stand in a text that nobody has taken apart: a line of a file, an argument, a record, a page
// of output.
#pragma once

#include "inspect/redaction/secret_names.h"

#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

struct SecretPart {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::string name;  // of the value: "db.password"; of others what they are: "user-info of a URL"
};

inline constexpr std::size_t kNone = std::string_view::npos;

/// What has been redacted begins so.
inline constexpr std::string_view kMark = "<redacted:";

/// In order; none overlaps another. What stands beside a name that looks secret, see named_values.h, and what looks
/// secret by itself, see bare_secrets.h; in the form of property files as well, see escaped_text.h.
std::vector<SecretPart> secretsIn(std::string_view text, const SecretNames& names);

/// Whether a value says nothing though its name is secret: "auth=true", "${env.TOKEN}", what is redacted. But somebody's
/// password may be "true".
bool isHarmless(std::string_view name, std::string_view value);

}  // namespace rcp::inspect
