#include "inspect/archive/zip_archive.h"

#include "inspect/archive/zip_format.h"

#include <array>

namespace rcp::inspect {
namespace {

constexpr std::uint16_t kVersion = 20;    // 2.0, which has folders
constexpr std::uint16_t kUnix = 3 << 8;   // whose permissions the directory has
constexpr std::uint16_t kUtf8 = 1 << 11;  // names are
constexpr std::uint32_t kPrivate = 0100600U << 16U;

constexpr std::array<std::uint32_t, 256> crcTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) != 0 ? 0xedb88320U ^ (value >> 1U) : value >> 1U;
        }
        table[i] = value;
    }
    return table;
}

// The least significant byte first.
void put16(std::string& out, std::uint32_t value) {
    out += {static_cast<char>(value & 255U), static_cast<char>(value >> 8U & 255U)};
}

void put32(std::string& out, std::uint32_t value) {
    put16(out, value & 0xffffU);
    put16(out, value >> 16U);
}

std::uint32_t sizeOf(std::string_view bytes) {
    return static_cast<std::uint32_t>(bytes.size());
}

}  // namespace

std::uint32_t crc32(std::string_view bytes) {
    static constexpr std::array<std::uint32_t, 256> kTable = crcTable();
    std::uint32_t crc = 0xffffffffU;
    for (const char byte : bytes) {
        crc = kTable[(crc ^ static_cast<unsigned char>(byte)) & 255U] ^ (crc >> 8U);
    }
    return ~crc;
}

ZipArchive::ZipArchive(time_t time) {
    tm parts{};
    localtime_r(&time, &parts);
    time_ = static_cast<std::uint16_t>(parts.tm_hour << 11 | parts.tm_min << 5 | parts.tm_sec / 2);
    date_ = static_cast<std::uint16_t>((parts.tm_year - 80) << 9 | (parts.tm_mon + 1) << 5 |
                                       parts.tm_mday);
}

void ZipArchive::add(const std::string& name, std::string_view content) {
    std::string common;  // of both headers
    put16(common, kVersion);
    put16(common, kUtf8);
    put16(common, 0);  // as it is
    put16(common, time_);
    put16(common, date_);
    put32(common, crc32(content));
    put32(common, sizeOf(content));
    put32(common, sizeOf(content));
    put16(common, sizeOf(name));
    put16(common, 0);  // no further fields

    put32(directory_, kEntry);
    put16(directory_, kUnix | kVersion);
    directory_ += common;
    put16(directory_, 0);  // no comment
    put16(directory_, 0);  // on the first disk
    put16(directory_, 0);
    put32(directory_, kPrivate);
    put32(directory_, sizeOf(files_));
    directory_ += name;

    put32(files_, kLocalEntry);
    files_ += common;
    files_ += name;
    files_ += content;
    ++count_;
}

std::string ZipArchive::bytes() const {
    std::string all = files_ + directory_;
    put32(all, kEnd);
    put32(all, 0);  // there is one disk
    put16(all, count_);
    put16(all, count_);
    put32(all, sizeOf(directory_));
    put32(all, sizeOf(files_));
    put16(all, 0);
    return all;
}

}  // namespace rcp::inspect
