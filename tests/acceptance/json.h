// Reads the JSON that the stand-in platform and rcpinspect write: objects, lists, texts, whole
// numbers, true and false (as 1 and 0) and null.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace acceptance {

/// One JSON value. Asking it for another kind than it holds gives an empty answer.
struct Json {
    enum class Kind { Null, Number, Text, List, Object };

    Kind kind = Kind::Null;
    long number = 0;
    std::string text;
    std::vector<Json> list;
    std::map<std::string, Json> members;

    [[nodiscard]] bool isNull() const { return kind == Kind::Null; }
    [[nodiscard]] bool has(const std::string& name) const { return members.count(name) != 0; }
    /// The member called `name`; null when there is none.
    [[nodiscard]] const Json& operator[](const std::string& name) const;
    /// The texts of a list of texts.
    [[nodiscard]] std::vector<std::string> texts() const;
};

/// Parses one JSON text; throws std::runtime_error when it is none.
Json parseJson(std::string_view text);

}  // namespace acceptance
