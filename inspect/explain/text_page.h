// Text for a terminal, with headings, columns and what stands back.
#pragma once

#include <string>

namespace rcp::inspect {

class TextPage {
  public:
    explicit TextPage(bool isColored) : isColored_(isColored) {}

    void heading(const std::string& title) {
        text_ += (text_.empty() ? "" : "\n") + painted(kBold, title) + "\n";
    }
    void line(const std::string& text) { text_ += text + "\n"; }
    void aside(const std::string& text) { text_ += painted(kDim, text) + "\n"; }
    void pair(const std::string& name, const std::string& value) {
        text_ += "  " + name + std::string(name.size() < 15 ? 15 - name.size() : 1, ' ') + value;
        text_ += "\n";
    }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    static constexpr const char* kBold = "\033[1m";
    static constexpr const char* kDim = "\033[2m";
    static constexpr const char* kPlain = "\033[0m";

    [[nodiscard]] std::string painted(const char* color, const std::string& text) const {
        return isColored_ ? color + text + kPlain : text;
    }

    bool isColored_;
    std::string text_;
};

}  // namespace rcp::inspect
