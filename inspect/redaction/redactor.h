// Takes out of texts and documents what is nobody's business, so that they can be mailed.
//
//   learn   what is known to be secret, from wherever a value can come: files, arguments, variables, documents
//   redact  every place where one of these values stands, under whatever name, and what looks secret by itself
//
// A value becomes "<redacted:DIGEST>": equal ones stay equal within one report. The user's home folder, name and
// host become "/home/<user>", "<user>" and "<host>".
#pragma once

#include "inspect/redaction/identity.h"
#include "inspect/redaction/salted_digest.h"
#include "inspect/redaction/secret_names.h"
#include "inspect/redaction/text_rules.h"

#include <cstdint>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace rcp::inspect {

class Redactor {
  public:
    using Json = nlohmann::ordered_json;

    Redactor(const Salt& salt, Identity identity);

    void addNames(std::string_view list) { names_.add(list); }
    /// An entry of a property file: of what a secret is made is one.
    void addSourceOf(std::string_view key, std::string_view value) {
        names_.addSourceOf(key, value);
    }
    /// From a file's text, an argument, a log.
    void learn(std::string_view text);
    /// From a property file: what its reader makes of an entry may be secret where the entry's text does not look so.
    void learnFile(std::string_view text);
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
    // A text, and what in it is secret.
    using Known = std::pair<const std::string, SecretPart>;

    void learnValue(const std::string& name, std::string_view value);
    void learnWithin(std::string_view text, const SecretPart& part);
    void learnEntry(std::string_view entry);
    [[nodiscard]] const Known* knownAt(std::string_view text, std::size_t at) const;
    std::string mark(const std::string& name, std::string_view value);
    std::string withoutKnown(std::string_view text);
    std::string withoutIdentity(std::string text);
    [[nodiscard]] SecretPart partUnder(const std::string& name, const std::string& value) const;
    [[nodiscard]] SecretPart partMadeOf(const std::string& pattern, const std::string& text) const;
    [[nodiscard]] SecretPart partMade(const std::string& pattern, const std::string& name,
                                      const std::string& text) const;

    SecretNames names_;
    Salt salt_;
    Identity identity_;
    std::map<std::string, SecretPart, std::less<>> known_;
    // How long those are that begin with the same bytes, the longest first.
    std::unordered_map<std::uint32_t, std::set<std::size_t, std::greater<>>> lengths_;
    std::map<std::string, std::string, std::less<>> plain_;              // what written forms mean
    std::map<std::pair<std::string, std::string>, std::size_t> counts_;  // by name and digest
};

}  // namespace rcp::inspect
