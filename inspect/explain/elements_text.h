// The elements of an explained command line as text, and the words for where a text comes from.
#pragma once

#include "inspect/explain/text_page.h"

#include <nlohmann/json.hpp>

namespace rcp::inspect {

/// Every element with its rule, source, placeholders and losers.
void addElements(TextPage& page, const nlohmann::json& elements);
/// What differs from one installation to another: each source once, and nothing that the launcher always writes.
void addFoldedElements(TextPage& page, const nlohmann::json& elements);

/// The name behind the last slash.
std::string baseName(const std::string& path);

/// "${env.USER,nobody} = nobody, the default: USER is not set".
std::string placeholderText(const nlohmann::json& placeholder);

/// A part of a merged path with its source: "/opt/lib (rcplauncher.properties:67 library.path.prepend)".
std::string partText(const nlohmann::json& part);

/// A SOURCE of the layout in a few words: "rcplauncher.properties:12 vm".
std::string sourceText(const nlohmann::json& source);

/// "    (rcplauncher.properties:12 vm)"; nothing of what the launcher makes itself.
std::string sourceInBrackets(const nlohmann::json& source);

}  // namespace rcp::inspect
