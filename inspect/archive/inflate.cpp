#include "inspect/archive/inflate.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace rcp::inspect {
namespace {

constexpr std::size_t kMostBits = 15;
constexpr unsigned kEndOfBlock = 256;
constexpr unsigned kFirstLength = 257;
constexpr unsigned kLengths = 29;
constexpr unsigned kDistances = 30;

// A Huffman code by what it consists of: how many symbols each length has, and the symbols in their order.
struct Code {
    std::array<unsigned, kMostBits + 1> counts{};
    std::vector<unsigned> symbols = {};
};

Code codeOf(std::span<const unsigned> lengths) {
    Code code;
    for (unsigned length = 1; length <= kMostBits; ++length) {
        for (unsigned symbol = 0; symbol < lengths.size(); ++symbol) {
            if (lengths[symbol] == length) {
                ++code.counts[length];
                code.symbols.push_back(symbol);
            }
        }
    }
    return code;
}

// Lengths and distances come in groups of twice as many values each `width` groups; what bits follow a group's
// symbol tells which of its values is meant.
struct Group {
    unsigned base = 0;
    unsigned bits = 0;
};

Group groupOf(unsigned symbol, unsigned width) {
    Group group;
    for (unsigned i = 0; i < symbol; ++i) {
        group.base += 1U << group.bits;
        group.bits = i + 1 < 2 * width ? 0 : (i + 1) / width - 1;
    }
    return group;
}

class Inflation {
  public:
    Inflation(std::string_view bytes, std::size_t limit) : bytes_(bytes), limit_(limit) {}

    std::optional<std::string> run() {
        for (bool isLast = false; !isLast && !isDamaged_;) {
            isLast = take(1) == 1;
            addBlock(take(2));
        }
        return isDamaged_ ? std::nullopt : std::optional(std::move(text_));
    }

  private:
    unsigned take(unsigned count) {
        unsigned value = 0;
        for (unsigned i = 0; i < count; ++i, ++at_) {
            const std::size_t byte = at_ / 8;
            isDamaged_ = isDamaged_ || byte >= bytes_.size();
            value |=
                isDamaged_ ? 0U : (static_cast<unsigned char>(bytes_[byte]) >> at_ % 8 & 1U) << i;
        }
        return value;
    }

    unsigned takeSymbol(const Code& code) {
        unsigned read = 0;
        unsigned first = 0;
        std::size_t index = 0;
        for (std::size_t length = 1; length <= kMostBits; ++length) {
            read |= take(1);
            const unsigned count = code.counts[length];
            if (read >= first && read - first < count) {
                return code.symbols[index + read - first];
            }
            index += count;
            first = (first + count) << 1U;
            read <<= 1U;
        }
        isDamaged_ = true;
        return kEndOfBlock;
    }

    void addBlock(unsigned kind) {
        if (kind == 0) {
            addStored();
        } else if (kind == 1) {
            addWithFixedCodes();
        } else if (kind == 2) {
            addWithOwnCodes();
        } else {
            isDamaged_ = true;
        }
    }

    void add(std::string_view bytes) {
        isDamaged_ = isDamaged_ || bytes.size() > limit_ - text_.size();
        text_ += isDamaged_ ? std::string_view() : bytes;
    }

    void addStored() {
        at_ = (at_ + 7) / 8 * 8;
        const unsigned size = take(16);
        const unsigned inverted = take(16);
        isDamaged_ = isDamaged_ || inverted != (size ^ 0xFFFFU);
        if (isDamaged_ || size > bytes_.size() - at_ / 8) {
            isDamaged_ = true;
            return;
        }
        add(bytes_.substr(at_ / 8, size));
        at_ += std::size_t{size} * 8;
    }

    void addWithFixedCodes() {
        std::vector<unsigned> lengths(288, 8);
        std::fill(lengths.begin() + 144, lengths.begin() + 256, 9);
        std::fill(lengths.begin() + 256, lengths.begin() + 280, 7);
        addCoded(codeOf(lengths), codeOf(std::vector<unsigned>(kDistances, 5)));
    }

    void addWithOwnCodes() {
        constexpr std::array<std::uint8_t, 19> kOrder = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                         11, 4,  12, 3, 13, 2, 14, 1, 15};
        const unsigned symbols = take(5) + kFirstLength;
        const unsigned distances = take(5) + 1;
        const unsigned given = take(4) + 4;
        std::array<unsigned, kOrder.size()> lengthsOfLengths{};
        for (unsigned i = 0; i < given; ++i) {
            lengthsOfLengths[kOrder[i]] = take(3);
        }
        const std::vector<unsigned> lengths =
            takeLengths(codeOf(lengthsOfLengths), symbols + distances);
        if (!isDamaged_) {
            const std::span<const unsigned> all(lengths);
            addCoded(codeOf(all.first(symbols)), codeOf(all.subspan(symbols)));
        }
    }

    // Some symbols stand for a length that is repeated.
    std::vector<unsigned> takeLengths(const Code& code, std::size_t count) {
        std::vector<unsigned> lengths;
        while (lengths.size() < count && !isDamaged_) {
            const unsigned symbol = takeSymbol(code);
            const bool isOfLast = symbol == 16;
            isDamaged_ = isDamaged_ || (isOfLast && lengths.empty());
            const unsigned times = symbol < 16    ? 1
                                   : isOfLast     ? 3 + take(2)
                                   : symbol == 17 ? 3 + take(3)
                                                  : 11 + take(7);
            const unsigned length = symbol < 16               ? symbol
                                    : isOfLast && !isDamaged_ ? lengths.back()
                                                              : 0;
            lengths.insert(lengths.end(), times, length);
        }
        isDamaged_ = isDamaged_ || lengths.size() != count;
        return lengths;
    }

    void addCoded(const Code& symbols, const Code& distances) {
        while (!isDamaged_) {
            const unsigned symbol = takeSymbol(symbols);
            if (symbol == kEndOfBlock) {
                return;
            }
            if (symbol < kEndOfBlock) {
                const char byte = static_cast<char>(symbol);
                add({&byte, 1});
            } else {
                addAgain(symbol - kFirstLength, distances);
            }
        }
    }

    // Something that stands in the text already, and may go on into what it adds.
    void addAgain(unsigned symbol, const Code& distances) {
        constexpr unsigned kLongest = 28;  // alone of its group
        const Group length = symbol == kLongest ? Group{255, 0} : groupOf(symbol, 4);
        const unsigned count = 3 + length.base + take(length.bits);
        const unsigned place = takeSymbol(distances);
        if (symbol >= kLengths || place >= kDistances) {
            isDamaged_ = true;
            return;
        }
        const Group distance = groupOf(place, 2);
        const std::size_t back = std::size_t{1} + distance.base + take(distance.bits);
        isDamaged_ = isDamaged_ || back > text_.size();
        for (unsigned i = 0; i < count && !isDamaged_; ++i) {
            const char byte = text_[text_.size() - back];
            add({&byte, 1});
        }
    }

    std::string_view bytes_;
    std::size_t limit_;
    std::size_t at_ = 0;  // the next bit
    std::string text_;
    bool isDamaged_ = false;
};

}  // namespace

std::optional<std::string> inflated(std::string_view bytes, std::size_t limit) {
    return Inflation(bytes, limit).run();
}

}  // namespace rcp::inspect
