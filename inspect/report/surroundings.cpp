#include "inspect/report/surroundings.h"

#include "base/system_calls.h"
#include "inspect/making.h"
#include "inspect/quiet_read.h"

#include <sys/stat.h>
#include <sys/utsname.h>

#include <nlohmann/json.hpp>
#include <sstream>

namespace rcp::inspect {
namespace {

// "Debian GNU/Linux 13 (trixie)"; of a Mac the kernel's version says as much.
std::string distribution() {
    constexpr std::string_view kName = "PRETTY_NAME=\"";
    std::istringstream lines(readPlace("/etc/os-release"));
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(kName) && line.ends_with('"')) {
            return ", " + line.substr(kName.size(), line.size() - kName.size() - 1);
        }
    }
    return {};
}

std::string system() {
    utsname name{};
    return uname(&name) < 0 ? std::string()
                            : std::string(name.sysname) + " " + name.release + ", " + name.machine +
                                  distribution();
}

std::string fileText(const std::string& path) {
    struct stat status {};
    return calls::stat(path.c_str(), &status) != 0
               ? path + ", which cannot be looked at"
               : path + ", " + std::to_string(status.st_size) + " bytes, of " +
                     dateAndTime(status.st_mtime);
}

std::string answer(const nlohmann::json& doctors, const std::string& question) {
    for (const auto& one : doctors.value("answers", nlohmann::json::array())) {
        if (one["question"] == question) {
            return one["text"];
        }
    }
    return {};
}

}  // namespace

std::string describeSurroundings(const Options& options, const nlohmann::json& doctors) {
    const nlohmann::json made = describeMaking();
    std::string text;
    const auto line = [&](std::string name, const std::string& value) {
        name.resize(14, ' ');
        text += name + value + "\n";
    };
    line("time", made["time"]);
    line("rcpinspect", made["version"]);
    line("system", system());
    line("launcher", fileText(options.launcher));
    line("installation", options.installation);
    line("JVM", answer(doctors, "JVM"));
    line("user", made["user"]);
    line("locale", made["locale"]);
    if (options.isWithHost) {
        line("host", hostName());
    }
    std::size_t number = 0;
    for (const std::string& argument : options.arguments) {
        text += (number == 0 ? "arguments\n   " : "   ") + std::to_string(number + 1) + "  " +
                argument + "\n";
        ++number;
    }
    return text;
}

}  // namespace rcp::inspect
