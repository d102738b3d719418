// Walks the object graph of a binary property list the way a parser would, but only to count:
// "bplist00", the objects, a table of their offsets, and a trailer of 32 bytes that describes the
// table. Every number is big-endian.
#include "platform/property_list_guard.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace rcp::platform {

namespace {

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kTrailerSize = 32;
constexpr std::size_t kMaxIntegerSize = 8;

// What one object costs a parser besides its bytes, and what the whole unfolded list may cost.
constexpr std::uint64_t kObjectCost = 16;
constexpr std::uint64_t kMaxCost = std::uint64_t{4} << 20;

constexpr unsigned kCountFollows = 0xF;

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

    /// Counts the object and what it holds; false when anything is out of bounds.
    bool visit(std::uint64_t object, int depth) {
        if (depth > kMaxPropertyListDepth || object >= objectCount_) {
            return false;
        }
        const std::optional<std::uint64_t> offset =
            integer(table_ + object * offsetSize_, offsetSize_);
        if (!offset || *offset < kHeaderSize || *offset >= table_) {
            return false;
        }
        const unsigned kind = byteAt(*offset) >> 4U;
        const unsigned info = byteAt(*offset) & 0xFU;
        std::uint64_t at = *offset + 1;
        switch (kind) {
            case 0x0:
                return spend(0, at);
            case 0x1:
            case 0x2:
            case 0x3:
                return info <= 4 && spend(std::uint64_t{1} << info, at);
            case 0x8:
                return spend(std::uint64_t{info} + 1, at);
            default:
                break;
        }
        const std::optional<std::uint64_t> count = countOf(info, at);
        if (!count) {
            return false;
        }
        switch (kind) {
            case 0x4:
            case 0x5:
            case 0x7:
                return spend(*count, at);
            case 0x6:
                return spend(*count * 2, at);
            case 0xA:
            case 0xC:
                return visitAll(*count, at, depth);
            case 0xD:
                return visitAll(*count * 2, at, depth);
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
