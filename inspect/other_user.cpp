#include "inspect/other_user.h"

#include "base/transfer.h"
#include "base/unique_fd.h"

#include <errno.h>
#include <fcntl.h>
#include <locale.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <utility>
#include <vector>

extern char** environ;  // environ(7)

namespace rcp::inspect {
namespace {

struct Variable {
    std::string name;
    std::string value;
    std::size_t line = 0;
};
using Variables = std::vector<Variable>;

bool isName(const std::string& name) {
    const bool isOfFunction = name.starts_with("BASH_FUNC_") && name.ends_with("%%");
    return isOfFunction ||
           (!name.empty() && std::isdigit(static_cast<unsigned char>(name.front())) == 0 &&
            std::all_of(name.begin(), name.end(), [](unsigned char character) {
                return std::isalnum(character) != 0 || character == '_';
            }));
}

// A line without a name goes on with the value in front of it. False when there is none.
bool addLine(const std::string& line, std::size_t number, Variables& variables) {
    const std::size_t equals = line.find('=');
    if (equals != std::string::npos && isName(line.substr(0, equals))) {
        variables.push_back({line.substr(0, equals), line.substr(equals + 1), number});
        return true;
    }
    if (variables.empty()) {
        return line.empty() || line.starts_with('#');
    }
    if (!line.empty() && !line.starts_with('#')) {
        variables.back().value += "\n" + line;
    }
    return true;
}

void clearEnvironment() {
    while (*environ != nullptr) {
        const std::string variable = *environ;
        if (unsetenv(variable.substr(0, variable.find('=')).c_str()) != 0) {
            ++environ;  // without a name nobody can ask for it
        }
    }
}

Became takeFile(const std::string& path) {
    const UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));  // a pipe, too
    errno = file ? 0 : errno;
    const std::string text = file ? readToEnd(file.get()) : std::string();
    if (errno != 0) {
        return {.problem = "no variables can be read from " + path + ": " + strerror(errno)};
    }
    Variables variables;
    std::istringstream lines(text);
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (!addLine(line, number, variables)) {  // which may hold a secret
            return {.problem = path + ":" + std::to_string(number) + ": this is not NAME=VALUE"};
        }
    }
    clearEnvironment();
    Became became;
    for (const Variable& variable : variables) {
        setenv(variable.name.c_str(), variable.value.c_str(), 1);
        became.lines[variable.name] = variable.line;
    }
    return became;
}

bool isLocale(const std::string& name) {
    const locale_t locale = newlocale(LC_CTYPE_MASK, name.c_str(), nullptr);
    if (locale != nullptr) {
        freelocale(locale);
    }
    return locale != nullptr;
}

}  // namespace

Became become(const OtherUser& user) {
    if (!user.locale.empty() && !isLocale(user.locale)) {
        return {.problem = "no locale " + user.locale + " on this machine"};
    }
    Became became = user.environmentFile.empty() ? Became() : takeFile(user.environmentFile);
    if (!became.problem.empty()) {
        return became;
    }
    const std::pair<const char*, const std::string&> settings[] = {
        {"HOME", user.home}, {"USER", user.name}, {"LOGNAME", user.name}, {"LC_ALL", user.locale}};
    for (const auto& [name, value] : settings) {
        if (!value.empty()) {
            setenv(name, value.c_str(), 1);
        }
    }
    return became;
}

}  // namespace rcp::inspect
