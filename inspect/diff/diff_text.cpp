#include "inspect/diff/compare.h"
#include "inspect/explain/elements_text.h"

namespace rcp::inspect {
namespace {

using nlohmann::json;

// So many differences of a part are shown.
constexpr std::size_t kShown = 20;

class Page {
  public:
    explicit Page(const TextForm& form) : form_(form) {}

    void line(const std::string& text) { text_ += text + "\n"; }
    void changed(const std::string& change, const std::string& text) {
        const bool isAdded = change == "added";
        const char* sign = isAdded ? "+ " : change == "removed" ? "- " : "~ ";
        const char* color = isAdded ? "\033[32m" : change == "removed" ? "\033[31m" : "\033[33m";
        line(form_.isColored ? color + (sign + text) + "\033[0m" : sign + text);
    }
    template <typename Text>
    void part(const std::string& title, const json& differences, Text textOf) {
        if (differences.empty()) {
            return;
        }
        line("\n" + (form_.isColored ? "\033[1m" + title + "\033[0m" : title));
        const bool isWhole = form_.isWhole || differences.size() <= kShown + 1;
        for (std::size_t i = 0; i < (isWhole ? differences.size() : kShown); ++i) {
            changed(differences[i]["change"], textOf(differences[i]));
        }
        if (!isWhole) {
            line("  … and " + std::to_string(differences.size() - kShown) +
                 " more; --all lists them");
        }
    }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    TextForm form_;
    std::string text_;
};

std::string sideText(const json& side) {
    if (side.contains("log")) {
        return "the launch of " + side["date"].get<std::string>() + ", recorded in " +
               side["log"].get<std::string>();
    }
    std::string text = side["installation"];
    if (side["level"].is_string()) {
        text += ", level " + side["level"].get<std::string>();
    }
    return text +
           (side["date"].is_string() ? ", settings of " + side["date"].get<std::string>() : "");
}

// What a launch does, behind its subject.
std::string outcomeText(const json& side) {
    if (!side.contains("outcome")) {
        return "started the platform";
    }
    const json& outcome = side["outcome"];
    const std::string kind = outcome["kind"];
    if (outcome.contains("record")) {
        return "ends with " + outcome["record"].get<std::string>();
    }
    if (kind == "ends" || kind == "fatal") {
        return "ends without starting anything";
    }
    if (kind == "provisioning") {
        return "provisions first";
    }
    if (outcome.contains("obstacle")) {
        return "cannot start the platform: " + outcome["obstacle"].get<std::string>();
    }
    return outcome["role"] == "daemon" ? "passes its arguments on to the running platform"
           : kind == "in-process"      ? "starts the platform in its own process"
                                       : "starts the platform";
}

std::string sourceBehind(const json& difference) {
    return difference.contains("source") ? "    (" + sourceText(difference["source"]) + ")" : "";
}

std::string variableText(const json& variable) {
    const json& value = variable["value"];
    return variable["name"].get<std::string>() + "=" +
           (value.is_null() ? "(not set)" : value.get<std::string>()) + sourceBehind(variable);
}

// The source without its key, which stands in front.
std::string propertyText(const json& property) {
    json source = property["source"];
    source.erase("key");
    return property["name"].get<std::string>() + "=" + property["value"].get<std::string>() +
           "    (" + sourceText(source) + ")";
}

std::string fileText(const json& file) {
    const std::string path = file["path"];
    return file.contains("became")
               ? path + "    (is a " + file["became"].get<std::string>() + " now)"
           : file.contains("isReadable") ? path + "    (cannot be read)"
                                         : path;
}

std::string findingText(const json& finding) {
    return finding["code"].get<std::string>() + " " + finding["file"].get<std::string>() +
           (finding["line"] == 0 ? "" : ":" + finding["line"].dump()) + ": " +
           finding["message"].get<std::string>();
}

}  // namespace

std::string differenceText(const json& result, const TextForm& form) {
    if (result["isDifferent"] == false) {
        return "no difference\n";
    }
    Page page(form);
    const json& first = result["first"];
    const json& second = result["second"];
    page.changed("removed", sideText(first));
    page.changed("added", sideText(second));
    const std::string ours = outcomeText(first);
    const std::string theirs = outcomeText(second);
    const char* name = first.contains("log") ? "it " : "the first ";
    page.line(ours == theirs ? "both: " + ours
                             : name + ours + "; " +
                                   (first.contains("log") ? "the next " : "the second ") + theirs);
    page.part("Command line", result["elements"], [](const json& element) {
        return element["text"].get<std::string>() + sourceBehind(element);
    });
    page.part("Environment", result["environment"], variableText);
    page.part("Properties", result["properties"], propertyText);
    page.part("User's copies of master files", result["copies"], [](const json& copy) {
        return copy["copy"].get<std::string>() + ": " + copy["message"].get<std::string>();
    });
    page.part("Files", result["files"], fileText);
    page.part("Findings of check", result["findings"], findingText);
    return page.text();
}

}  // namespace rcp::inspect
