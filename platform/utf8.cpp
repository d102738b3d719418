// Decodes UTF-8 strictly: overlong spellings, surrogates and cut sequences are errors.
#include "platform/utf8.h"

#include <cstddef>
#include <cstdint>

namespace rcp::platform {

namespace {

constexpr char32_t kLastCharacter = 0x10FFFF;

bool isSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

/// The number of bytes that follow `lead`, and the smallest character they may encode; an overlong
/// encoding would be a second spelling of the same text.
struct Sequence {
    std::size_t following = 0;
    char32_t bits = 0;
    char32_t smallest = 0;
};

std::optional<Sequence> sequenceOf(std::uint8_t lead) {
    if (lead < 0x80) {
        return Sequence{0, lead, 0};
    }
    if (lead >> 5U == 0x6) {
        return Sequence{1, lead & 0x1FU, 0x80};
    }
    if (lead >> 4U == 0xE) {
        return Sequence{2, lead & 0x0FU, 0x800};
    }
    if (lead >> 3U == 0x1E) {
        return Sequence{3, lead & 0x07U, 0x10000};
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::u32string> decodeUtf8(std::string_view text) {
    std::u32string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto sequence = sequenceOf(static_cast<std::uint8_t>(text[i++]));
        if (!sequence || sequence->following > text.size() - i) {
            return std::nullopt;
        }
        char32_t c = sequence->bits;
        for (std::size_t n = 0; n < sequence->following; ++n) {
            const auto next = static_cast<std::uint8_t>(text[i++]);
            if (next >> 6U != 0x2) {
                return std::nullopt;
            }
            c = c << 6U | (next & 0x3FU);
        }
        if (c < sequence->smallest || c > kLastCharacter || isSurrogate(c)) {
            return std::nullopt;
        }
        result += c;
    }
    return result;
}

}  // namespace rcp::platform
