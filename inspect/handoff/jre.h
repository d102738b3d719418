// What lies around a JVM's library or the program java, and belongs to it.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace rcp::inspect {

/// The first file that is missing, or empty, of the JRE in `home`.
std::optional<std::string> missingOfJre(const std::filesystem::path& home);

}  // namespace rcp::inspect
