#include "hostile.h"

namespace acceptance {

Texts shell(const std::string& script) {
    return {"/bin/sh", "-c", script + " exec \"$@\"", "sh"};
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
