// Walks the object graph of a binary property list the way a parser would, but only to count:
// "bplist00", the objects, a table of their offsets, and a trailer of 32 bytes that describes the
// table. Every number is big-endian. What the parsers of the two systems read differently is refused:
// a key that stands in its dictionary twice (one takes the first, the other the last of them) or is
// no text or the one that makes a reference of a dictionary for one of them, text with the character 0, with a
// byte that is no ASCII or with half a surrogate pair, numbers of sizes that one does not know, and what one of
// them cannot write as XML: nothing, sets, references of archives, and dates whose year has not four digits.
#include "platform/property_list_guard.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace rcp::platform {

namespace {

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kTrailerSize = 32;
constexpr std::size_t kMaxIntegerSize = 8;

// What one object costs a parser besides its bytes, and what the whole unfolded list may cost.
constexpr std::uint64_t kObjectCost = 16;
constexpr std::uint64_t kMaxCost = std::uint64_t{4} << 20;

constexpr unsigned kCountFollows = 0xF;

// The upper half of an object's first byte.
constexpr unsigned kAsciiText = 0x5;
constexpr unsigned kUtf16Text = 0x6;

constexpr std::u16string_view kReferenceKey(u"CF$UID");

/// Whether no parser ends the text early or drops a part of it.
bool isWholeText(const std::u16string& text) {
    bool isPairOpen = false;
    for (const char16_t unit : text) {
        const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
        if (unit == 0 || isLow != isPairOpen) {
            return false;
        }
        isPairOpen = unit >= 0xD800 && unit <= 0xDBFF;
    }
    return !isPairOpen;
}

class Walker {
  public:
    explicit Walker(std::string_view data) : data_(data) {}

    bool run() {
        if (data_.size() < kHeaderSize + kTrailerSize + 1) {
            return false;
        }
        const std::size_t trailer = data_.size() - kTrailerSize;
        offsetSize_ = byteAt(trailer + 6);
        referenceSize_ = byteAt(trailer + 7);
        objectCount_ = *integer(trailer + 8, 8);
        const std::uint64_t top = *integer(trailer + 16, 8);
        table_ = *integer(trailer + 24, 8);
        if (offsetSize_ == 0 || offsetSize_ > kMaxIntegerSize || referenceSize_ == 0 ||
            referenceSize_ > kMaxIntegerSize || table_ < kHeaderSize || table_ > trailer ||
            objectCount_ > (trailer - table_) / offsetSize_) {
            return false;
        }
        return visit(top, 1);
    }

  private:
    [[nodiscard]] std::uint8_t byteAt(std::uint64_t at) const {
        return static_cast<std::uint8_t>(data_[static_cast<std::size_t>(at)]);
    }

    [[nodiscard]] std::optional<std::uint64_t> integer(std::uint64_t at, std::uint64_t size) const {
        if (at > data_.size() || size > data_.size() - at || size > kMaxIntegerSize) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        for (std::uint64_t i = 0; i < size; ++i) {
            value = value << 8 | byteAt(at + i);
        }
        return value;
    }

    /// Where the object begins; none when that is out of bounds.
    [[nodiscard]] std::optional<std::uint64_t> offsetOf(std::uint64_t object) const {
        if (object >= objectCount_) {
            return std::nullopt;
        }
        const auto offset = integer(table_ + object * offsetSize_, offsetSize_);
        return offset && *offset >= kHeaderSize && *offset < table_ ? offset : std::nullopt;
    }

    /// Counts the object and what it holds; false when anything is out of bounds.
    bool visit(std::uint64_t object, int depth) {
        const std::optional<std::uint64_t> offset = offsetOf(object);
        if (depth > kMaxPropertyListDepth || !offset) {
            return false;
        }
        const unsigned kind = byteAt(*offset) >> 4U;
        const unsigned info = byteAt(*offset) & 0xFU;
        std::uint64_t at = *offset + 1;
        switch (kind) {
            case 0x0:
                return (info == 0x8 || info == 0x9) && spend(0, at);
            case 0x1:
            case 0x2:
            case 0x3:
                return info <= 4 && spend(std::uint64_t{1} << info, at) &&
                       isSafeNumber(kind, info, at);
            default:
                break;
        }
        const std::optional<std::uint64_t> count = countOf(info, at);
        if (!count) {
            return false;
        }
        switch (kind) {
            case 0x4:
                return spend(*count, at);
            case kAsciiText:
            case kUtf16Text:
                return spend(*count * unitSize(kind), at) && textAt(kind, *count, at).has_value();
            case 0xA:
                return visitAll(*count, at, depth);
            case 0xD:
                return visitAll(*count * 2, at, depth) && areDifferentKeys(*count, at);
            default:
                return false;
        }
    }

    bool visitAll(std::uint64_t references, std::uint64_t at, int depth) {
        if (!spend(references * referenceSize_, at)) {
            return false;
        }
        for (std::uint64_t i = 0; i < references; ++i) {
            const auto object = integer(at + i * referenceSize_, referenceSize_);
            if (!object || !visit(*object, depth + 1)) {
                return false;
            }
        }
        return true;
    }

    /// Whether parsers read the integer, real or date of 2 to the power of `info` bytes alike.
    [[nodiscard]] bool isSafeNumber(unsigned kind, unsigned info, std::uint64_t at) const {
        // From the year 1000 until 9999, in seconds since 2001.
        constexpr double kFirstDate = -31588531200.0;
        constexpr double kBehindDates = 252423993600.0;
        if (kind == 0x1) {
            return info < 4 || *integer(at, kMaxIntegerSize) == 0;
        }
        if (kind == 0x2) {
            return info == 2 || info == 3;
        }
        const auto date =
            info == 3 ? std::bit_cast<double>(*integer(at, kMaxIntegerSize)) : kBehindDates;
        return date >= kFirstDate && date < kBehindDates;
    }

    static std::uint64_t unitSize(unsigned kind) { return kind == kUtf16Text ? 2 : 1; }

    /// The text of so many units, all of them inside the objects; none when parsers read it differently.
    [[nodiscard]] std::optional<std::u16string> textAt(unsigned kind, std::uint64_t units,
                                                       std::uint64_t at) const {
        std::u16string text;
        for (std::uint64_t i = 0; i < units; ++i) {
            const std::uint64_t unit = *integer(at + i * unitSize(kind), unitSize(kind));
            if (kind == kAsciiText && unit > 0x7F) {
                return std::nullopt;
            }
            text += static_cast<char16_t>(unit);
        }
        return isWholeText(text) ? std::optional(text) : std::nullopt;
    }

    /// Whether the references at `at`, which were visited, lead to texts that are keys, each to another one.
    [[nodiscard]] bool areDifferentKeys(std::uint64_t references, std::uint64_t at) const {
        std::vector<std::u16string> texts;
        for (std::uint64_t i = 0; i < references; ++i) {
            std::uint64_t offset = *offsetOf(*integer(at + i * referenceSize_, referenceSize_));
            const unsigned kind = byteAt(offset) >> 4U;
            const unsigned info = byteAt(offset++) & 0xFU;
            if (kind != kAsciiText && kind != kUtf16Text) {
                return false;
            }
            const std::uint64_t units = *countOf(info, offset);
            texts.push_back(*textAt(kind, units, offset));
        }
        std::sort(texts.begin(), texts.end());
        return std::adjacent_find(texts.begin(), texts.end()) == texts.end() &&
               !std::binary_search(texts.begin(), texts.end(), kReferenceKey);
    }

    /// The element count of an object, moving `at` behind an integer that holds it.
    std::optional<std::uint64_t> countOf(unsigned info, std::uint64_t& at) const {
        if (info != kCountFollows) {
            return info;
        }
        const std::optional<std::uint64_t> marker = integer(at, 1);
        if (!marker || *marker >> 4U != 0x1 || (*marker & 0xFU) > 3) {
            return std::nullopt;
        }
        const std::uint64_t size = std::uint64_t{1} << (*marker & 0xFU);
        const std::optional<std::uint64_t> count = integer(at + 1, size);
        // No object has more elements than the list has bytes; this also keeps products small.
        if (!count || *count > data_.size()) {
            return std::nullopt;
        }
        at += 1 + size;
        return count;
    }

    /// Takes `bytes` at `at` into account; false when they reach into the table or cost too much.
    bool spend(std::uint64_t bytes, std::uint64_t at) {
        cost_ += kObjectCost + bytes;
        return at <= table_ && bytes <= table_ - at && cost_ <= kMaxCost;
    }

    std::string_view data_;
    std::uint64_t offsetSize_ = 0;
    std::uint64_t referenceSize_ = 0;
    std::uint64_t objectCount_ = 0;
    std::uint64_t table_ = 0;
    std::uint64_t cost_ = 0;
};

}  // namespace

bool isSafeBinaryPropertyList(std::string_view data) {
    return Walker(data).run();
}

}  // namespace rcp::platform
