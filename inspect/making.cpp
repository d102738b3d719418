#include "inspect/making.h"

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
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

std::string hostName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

std::string dateAndTime(time_t time) {
    std::array<char, 32> text{};
    tm parts{};
    gmtime_r(&time, &parts);
    return {text.data(), strftime(text.data(), text.size(), "%Y-%m-%d %H:%M UTC", &parts)};
}

std::string agoText(time_t seconds) {
    struct Unit {
        time_t seconds;
        const char* name;
    };
    constexpr std::array<Unit, 3> kUnits{{{86400, "day"}, {3600, "hour"}, {60, "minute"}}};
    Unit unit{1, "second"};
    for (auto larger = kUnits.rbegin(); larger != kUnits.rend(); ++larger) {
        unit = seconds >= larger->seconds ? *larger : unit;
    }
    const time_t count = seconds / unit.seconds;
    return std::to_string(count) + " " + unit.name + (count == 1 ? " ago" : "s ago");
}

nlohmann::json describeMaking() {
    return {{"time", dateAndTime(time(nullptr))},
            {"version", RCP_VERSION},
            {"user", effectiveUser()},
            {"locale", localeName()}};
}

}  // namespace rcp::inspect
