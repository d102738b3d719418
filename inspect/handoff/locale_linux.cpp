// Linux: file names are bytes, and a JVM reads and writes them in the character set of its locale. What that
// one cannot express becomes "?", which is another file.
#include "inspect/handoff/hand_off.h"
#include "platform/text.h"

#include <langinfo.h>
#include <locale.h>
#include <stdlib.h>
#include <wchar.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <type_traits>

namespace rcp::inspect {
namespace {

// In the order in which they count.
constexpr const char* kVariables[] = {"LC_ALL", "LC_CTYPE", "LANG"};
constexpr char kAscii[] = "ANSI_X3.4-1968";

struct FreeLocale {
    void operator()(locale_t locale) const { freelocale(locale); }
};
using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

// Of this thread for a while.
class InLocale {
  public:
    explicit InLocale(locale_t locale) : former_(uselocale(locale)) {}
    ~InLocale() { uselocale(former_); }
    InLocale(const InLocale&) = delete;
    InLocale& operator=(const InLocale&) = delete;
    InLocale(InLocale&&) = delete;
    InLocale& operator=(InLocale&&) = delete;

  private:
    locale_t former_;
};

bool isExpressible(const std::string& text, const std::string& characters, locale_t locale) {
    if (characters == kAscii) {
        return std::none_of(text.begin(), text.end(),
                            [](char byte) { return static_cast<unsigned char>(byte) >= 0x80U; });
    }
    const InLocale inLocale(locale);
    const char* rest = text.c_str();
    mbstate_t state{};
    return mbsrtowcs(nullptr, &rest, 0, &state) != static_cast<std::size_t>(-1);
}

bool isAddress(std::string_view text) {
    const std::size_t host = text.find("://");
    return host != std::string_view::npos && !text.substr(0, host).ends_with("file");
}

// "/opt/x", "@user.home/x", "-javaagent:lib/x.jar"; of a property only where the whole is one: "-Dx=/opt/x" and
// "-Dx=file:/opt/x", not "-Dtitle=this/that".
bool hasPath(std::string_view argument) {
    if (argument.find('/') == std::string_view::npos || isAddress(argument)) {
        return false;
    }
    const std::string_view value = argument.substr(std::min(argument.find('='), argument.size()));
    return !argument.starts_with("-D") || value.starts_with("=/") || value.starts_with("=file:");
}

}  // namespace

Examined examineLocale(const Examination& examination, const Plan& plan) {
    Examined examined{.what = "locale", .path = kAscii};
    std::string given = "no locale";
    std::string name = "C";
    for (const char* variable : kVariables) {
        if (const std::string value = variableAfter(variable, plan.environment); !value.empty()) {
            given = std::string(variable).append("=").append(value);
            name = value;
            break;
        }
    }
    const Locale locale(newlocale(LC_CTYPE_MASK, name.c_str(), nullptr));
    if (locale) {
        examined.path = nl_langinfo_l(CODESET, locale.get());
    } else {  // whoever asks for it stays where every program begins
        given.append(", which is not installed");
    }
    if (examined.path == "UTF-8") {
        return examined;
    }
    for (const Argument& argument : plan.line.arguments()) {
        const std::string text = toNarrow(argument.text);
        if (hasPath(text) && !isExpressible(text, examined.path, locale.get())) {
            // One is enough: most paths of a launch lie in the same few folders.
            std::string message = "the JVM gets " + given;
            message.append(", whose characters ").append(examined.path);
            message.append(" cannot express ").append(inQuotes(text));
            examined.faults.push_back(faultAt(examination, "RI814", argument.origin, message));
            break;
        }
    }
    return examined;
}

}  // namespace rcp::inspect
