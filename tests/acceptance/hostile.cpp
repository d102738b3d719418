#include "hostile.h"

#include <filesystem>

namespace acceptance {

Texts shell(const std::string& script) {
    return {"/bin/sh", "-c", script + " exec \"$@\"", "sh"};
}

std::string tracedTemporaryLog(const Installation& installation) {
    std::string text;
    for (const auto& entry : std::filesystem::directory_iterator(installation.tmp)) {
        if (entry.path().filename().string().starts_with("rcplauncher_")) {
            text += readFile(entry.path());
        }
    }
    return text;
}

bool hasErrorRecord(const std::string& log) {
    for (const std::string& line : splitLines(log)) {
        if (line.starts_with("Error: ") ||
            (line.starts_with("ZYPRA") && line.substr(9, 1) == "E")) {
            return true;
        }
    }
    return false;
}

void expectStartOrRecord(const Launch& launch) {
    EXPECT_EQ(launch.signal, 0);
    if (launch.platform) {
        EXPECT_EQ(launch.status, 0) << launch.log;
        return;
    }
    EXPECT_EQ(launch.status, 255) << launch.output;
    EXPECT_TRUE(hasErrorRecord(launch.log) || hasErrorRecord(launch.temporaryLog))
        << launch.log << "\n--- /tmp\n"
        << launch.temporaryLog;
}

}  // namespace acceptance
