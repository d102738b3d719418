// Linux: UTF-8 texts compared without regard to case.
#include "platform/linux/utf8.h"
#include "platform/platform.h"

#include <wctype.h>

#include <algorithm>

namespace rcp::platform {

namespace {

bool sameLetter(char32_t left, char32_t right) {
    return left == right ||
           towlower(static_cast<wint_t>(left)) == towlower(static_cast<wint_t>(right));
}

}  // namespace

// The process runs in a UTF-8 locale from its first steps on, so towlower knows every letter.
bool equalIgnoringCase(const std::string& left, const std::string& right) {
    const auto leftText = decodeUtf8(left);
    const auto rightText = decodeUtf8(right);
    if (!leftText || !rightText) {
        return left == right;
    }
    return std::equal(leftText->begin(), leftText->end(), rightText->begin(), rightText->end(),
                      sameLetter);
}

}  // namespace rcp::platform
