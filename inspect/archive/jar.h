// What a jar holds: the names from its directory alone, and one of its files.
#pragma once

#include <optional>
#include <set>
#include <string>

namespace rcp::inspect {

/// None for what is no zip file, or a damaged one.
std::optional<std::set<std::string>> jarEntries(const std::string& path);

/// What a file in it holds; none when it is not there, damaged or longer than anybody writes a manifest.
std::optional<std::string> jarFile(const std::string& path, const std::string& name);

inline constexpr char kManifest[] = "META-INF/MANIFEST.MF";
/// The class that the manifest names to be started, "org.example.Main"; empty without one.
std::string mainClassOf(const std::string& path);

}  // namespace rcp::inspect
