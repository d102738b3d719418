// Takes out of texts and documents what is nobody's business, so that they can be mailed.
//
//   learn   what is known to be secret, from wherever a value can come: files, arguments, variables, documents
//   redact  every place where one of these values stands, under whatever name, and what looks secret by itself
//
// A value becomes "<redacted:DIGEST>": equal ones stay equal within one report. The user's home folder, name and
// host become "/home/<user>", "<user>" and "<host>".
#pragma once

#include "inspect/redaction/salted_digest.h"
#include "inspect/redaction/secret_names.h"

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace rcp::inspect {

/// Whose report it is. What is empty is not looked for.
struct Identity {
    std::vector<std::string> homes;
    std::vector<std::string> users;
    std::vector<std::string> hosts;
};
/// Of the user of this process. A superuser's name is that of many.
Identity identityOfThisProcess();

class Redactor {
  public:
    using Json = nlohmann::ordered_json;

    Redactor(const Salt& salt, Identity identity);

    void addNames(std::string_view list) { names_.add(list); }
    /// From a file's text, an argument, a log.
    void learn(std::string_view text);
    /// The value of a key, option or variable, which counts when the name looks secret.
    void learn(std::string_view name, std::string_view value);
    void learnDocument(const Json& document);

    std::string redact(std::string_view text);
    /// Every string in it.
    void redactDocument(Json& document);

    /// What was redacted: objects of "name", "digest" (of values) and "count", in order of name.
    [[nodiscard]] Json redactions() const;
    /// The same for people, a line each; empty without one.
    [[nodiscard]] std::string redactionsText() const;

  private:
    void learnValue(const std::string& name, std::string_view value);
    [[nodiscard]] const std::string* knownAt(std::string_view text, std::size_t at) const;
    std::string mark(const std::string& name, std::string_view value);
    std::string withoutKnown(std::string_view text);
    std::string withoutIdentity(std::string text);
    void replaceWord(std::string& text, const std::string& word, const std::string& by,
                     const char* what);
    void replaceHomes(std::string& text);
    void redactValue(const std::string& name, std::string& value);

    SecretNames names_;
    Salt salt_;
    Identity identity_;
    std::map<std::string, std::string, std::less<>> known_;  // the name of each value
    // The same by their first bytes, the longest first.
    std::unordered_map<std::uint32_t, std::vector<const std::string*>> index_;
    std::map<std::pair<std::string, std::string>, std::size_t> counts_;  // by name and digest
};

}  // namespace rcp::inspect
