// A zip archive of a few texts, in memory: nothing in it is compressed, so that every tool reads it and its
// bytes can be searched.
#pragma once

#include <time.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace rcp::inspect {

/// The checksum of zip archives.
std::uint32_t crc32(std::string_view bytes);

class ZipArchive {
  public:
    /// Its files are of that time, to two seconds.
    explicit ZipArchive(time_t time);
    /// `name` is relative, with "/" between its parts. The whole must stay below 4 GB.
    void add(const std::string& name, std::string_view content);
    /// The archive with what has been added so far.
    [[nodiscard]] std::string bytes() const;

  private:
    std::uint16_t time_ = 0;
    std::uint16_t date_ = 0;
    std::uint16_t count_ = 0;
    std::string files_;
    std::string directory_;
};

}  // namespace rcp::inspect
