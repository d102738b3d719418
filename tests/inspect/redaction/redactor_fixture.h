// A redactor of one user, and what it leaves with "*" for what it took.
#pragma once

#include "inspect/redaction/redactor.h"

#include <regex>
#include <string>

namespace rcp::inspect {

inline constexpr Salt kSalt{1, 2};
inline const Identity kAnn{{"/home/ann"}, {"ann"}, {"desk7"}};

inline Redactor redactor() {
    return {kSalt, kAnn};
}

inline std::string starred(const std::string& text) {
    static const std::regex mark("<redacted:[0-9a-f]{6}>");
    return std::regex_replace(text, mark, "*");
}

inline std::string redacted(const std::string& text) {
    return starred(redactor().redact(text));
}

inline std::string redactedDocument(const char* text) {
    Redactor one = redactor();
    Redactor::Json document = Redactor::Json::parse(text);
    one.learnDocument(document);
    one.redactDocument(document);
    return starred(document.dump());
}

}  // namespace rcp::inspect
