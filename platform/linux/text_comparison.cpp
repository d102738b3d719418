// Linux: UTF-8 texts compared without regard to case.
#include "platform/platform.h"
#include "platform/utf8.h"

#include <locale.h>
#include <wctype.h>

#include <algorithm>

namespace rcp::platform {

namespace {

// The process's own locale may know fewer letters.
class Utf8Letters {
  public:
    Utf8Letters() : locale_(newlocale(LC_CTYPE_MASK, kUtf8LocaleName, nullptr)) {}
    Utf8Letters(const Utf8Letters&) = delete;
    Utf8Letters& operator=(const Utf8Letters&) = delete;
    Utf8Letters(Utf8Letters&&) = delete;
    Utf8Letters& operator=(Utf8Letters&&) = delete;
    ~Utf8Letters() {
        if (locale_ != nullptr) {
            freelocale(locale_);
        }
    }

    [[nodiscard]] bool areSame(char32_t left, char32_t right) const {
        return left == right || lower(left) == lower(right);
    }

  private:
    [[nodiscard]] wint_t lower(char32_t letter) const {
        const auto c = static_cast<wint_t>(letter);
        return locale_ == nullptr ? towlower(c) : towlower_l(c, locale_);
    }

    locale_t locale_;
};

}  // namespace

bool equalIgnoringCase(const std::string& left, const std::string& right) {
    const auto leftText = decodeUtf8(left);
    const auto rightText = decodeUtf8(right);
    if (!leftText || !rightText) {
        return left == right;
    }
    const Utf8Letters letters;
    return std::equal(leftText->begin(), leftText->end(), rightText->begin(), rightText->end(),
                      [&](char32_t left, char32_t right) { return letters.areSame(left, right); });
}

}  // namespace rcp::platform
