// Numbers and texts in a file, each checked against its end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace rcp::inspect {

enum class ByteOrder { kLittle, kBig };

/// What lies beyond the end reads as 0 or empty and is remembered.
class Bytes {
  public:
    Bytes(std::string_view data, ByteOrder order) : data_(data), order_(order) {}

    std::uint64_t number(std::uint64_t at, std::size_t size) {
        const std::string_view bytes = part(at, size);
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const std::size_t next = order_ == ByteOrder::kBig ? i : bytes.size() - 1 - i;
            value = value << 8U | static_cast<unsigned char>(bytes[next]);
        }
        return value;
    }
    std::uint32_t word(std::uint64_t at) { return static_cast<std::uint32_t>(number(at, 4)); }
    std::uint8_t byte(std::uint64_t at) { return static_cast<std::uint8_t>(number(at, 1)); }

    std::string_view part(std::uint64_t at, std::uint64_t size) {
        if (at > data_.size() || size > data_.size() - at) {
            isDamaged_ = true;
            return {};
        }
        return data_.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(size));
    }
    /// The text at `at`, which ends at a NUL or with the data. No name is longer than `kLongestText`.
    std::string_view textView(std::uint64_t at) {
        const std::string_view rest =
            part(at, at < data_.size() ? data_.size() - at : 1).substr(0, kLongestText);
        return rest.substr(0, rest.find('\0'));
    }
    std::string text(std::uint64_t at) { return std::string(textView(at)); }

    void refuse() { isDamaged_ = true; }
    [[nodiscard]] bool isDamaged() const { return isDamaged_; }

  private:
    static constexpr std::size_t kLongestText = 4096;
    std::string_view data_;
    ByteOrder order_;
    bool isDamaged_ = false;
};

}  // namespace rcp::inspect
