// What the tests of hostile surroundings share.
#pragma once

#include "checks.h"

#include <unistd.h>

namespace acceptance {

/// Users who are nobody else: the one who launches and one who means no good.
inline constexpr uid_t kUser = 54321;
inline constexpr uid_t kStranger = 54322;

/// Skips the test unless it can act for other users.
#define NEEDS_ROOT()                                        \
    do {                                                    \
        if (geteuid() != 0) {                               \
            GTEST_SKIP() << "only root can be other users"; \
        }                                                   \
    } while (false)

/// A wrapper of the launch: the shell runs `script` first and then becomes the launcher.
Texts shell(const std::string& script);

bool hasErrorRecord(const std::string& log);

/// Either the platform started and all ended with status 0, or the launch ended with status 255 and
/// left an error record.
void expectStartOrRecord(const Launch& launch);

}  // namespace acceptance
