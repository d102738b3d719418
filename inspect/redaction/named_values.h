// Secrets that stand beside a name that promises one: NAME=VALUE, NAME: VALUE, "-NAME VALUE", <NAME>VALUE</NAME>.
#pragma once

#include "inspect/redaction/secret_names.h"
#include "inspect/redaction/text_parts.h"

#include <string_view>
#include <vector>

namespace rcp::inspect {

class NamedValues {
  public:
    NamedValues(std::string_view text, const SecretNames& names, std::vector<SecretPart>& parts)
        : text_(text), names_(names), parts_(parts) {}

    /// What separates a name from its value stands at that place. To be asked for these places in their order.
    void findAt(std::size_t at);

  private:
    [[nodiscard]] bool isFirstInLine(std::size_t at) const;
    [[nodiscard]] std::string_view keyOfRecord(const Name& name) const;
    [[nodiscard]] std::string_view keyBeside(const Name& value) const;
    void add(std::size_t begin, std::size_t end, std::string_view name);
    void addQuoted(std::size_t at, std::string_view key);
    void findValue(std::size_t at);
    void findQuoted(std::size_t at);
    void findPlaceholder(std::size_t at);
    [[nodiscard]] std::size_t beginOfNext(const Name& option) const;
    void findElement(std::size_t at);
    void findDefault(std::size_t at);
    void findOption(std::size_t at);
    void findAfterBlank(std::size_t at);

    std::string_view text_;
    const SecretNames& names_;
    std::vector<SecretPart>& parts_;
    std::size_t line_ = 0;     // where the line begins
    std::string_view before_;  // the line in front of it
};

}  // namespace rcp::inspect
