#include "inspect/making.h"

#include "inspect/page/page.h"

#include <errno.h>
#include <pwd.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <array>
#include <iostream>
#include <nlohmann/json.hpp>

namespace rcp::inspect {
namespace {

// As setlocale(3) looks for the locale of the characters.
std::string localeName() {
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = getenv(variable);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return "C";
}

}  // namespace

std::string effectiveUser() {
    const passwd* user = getpwuid(geteuid());
    return user == nullptr ? std::to_string(geteuid()) : std::string(user->pw_name);
}

std::string dateAndTime(time_t time) {
    std::array<char, 32> text{};
    tm parts{};
    gmtime_r(&time, &parts);
    return {text.data(), strftime(text.data(), text.size(), "%Y-%m-%d %H:%M UTC", &parts)};
}

nlohmann::json describeMaking() {
    return {{"time", dateAndTime(time(nullptr))},
            {"version", RCP_VERSION},
            {"user", effectiveUser()},
            {"locale", localeName()}};
}

int leavePage(nlohmann::json told, const Options& options) {
    told["made"] = describeMaking();
    if (!writePage(told, options.page)) {
        std::cerr << "rcpinspect: " << options.page << ": " << strerror(errno) << '\n';
        return kCannotCreate;
    }
    return kSuccess;
}

}  // namespace rcp::inspect
