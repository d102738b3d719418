// Linux: UTF-8 texts compared without regard to case.
#include "platform/linux/utf8.h"
#include "platform/platform.h"

#include <locale.h>
#include <wctype.h>

#include <algorithm>

namespace rcp::platform {

namespace {

// The process's own locale may know fewer letters.
wint_t lower(char32_t letter) {
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, kUtf8LocaleName, nullptr);
    const auto c = static_cast<wint_t>(letter);
    return utf8 == nullptr ? towlower(c) : towlower_l(c, utf8);
}

bool sameLetter(char32_t left, char32_t right) {
    return left == right || lower(left) == lower(right);
}

}  // namespace

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
