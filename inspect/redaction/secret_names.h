// Which names of keys, options and variables promise a value that is nobody's business.
#pragma once

#include "inspect/one_of.h"

#include <string>
#include <string_view>
#include <vector>

namespace rcp::inspect {

/// The key in rcplauncher.properties with which an installation names further secrets of its own:
/// "badge.number, iban". The launcher itself never asks for it.
inline constexpr std::wstring_view kSecretNamesKey = L"rcpinspect.redact";

/// The words of a name in small letters: "db.apiKey", "DB_API_KEY" and "-Ddb-api-key" have the same.
std::vector<std::string> wordsOf(std::string_view name);

/// Whether such an option takes "USER:PASSWORD", as that of curl does.
bool isUserOption(std::string_view option);
/// Whether it is that; a user's and a group's numbers are none.
bool hasPassword(std::string_view user);

class SecretNames {
  public:
    SecretNames() = default;
    /// With further names, separated by commas; one of several words is met where they follow each other.
    void add(std::string_view list);

    /// With what `value` is made of, when it is the value of a secret name: the variables and properties of its
    /// placeholders. What a launch sets or reads itself stays, and what is the folder of a path.
    void addSourceOf(std::string_view name, std::string_view value);

    /// Whether it looks secret: by whole words, for a keyboard is no key. When in doubt it does.
    [[nodiscard]] bool isSecret(std::string_view name) const;
    /// The same by a word that can hardly mean anything else, so that a blank behind it separates a value.
    [[nodiscard]] static bool isPlainlySecret(std::string_view name);

  private:
    std::vector<std::vector<std::string>> further_;
    std::vector<std::string> sources_;  // "env.NAME", "prop.NAME", and the names alone
};

}  // namespace rcp::inspect
