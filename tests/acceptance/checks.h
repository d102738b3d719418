// What the acceptance tests say about launches, in their own words.
#pragma once

#include "installation.h"
#include "tests/support/sandbox.h"

#include <gtest/gtest.h>

namespace acceptance {

/// Skips the test where the launcher cannot be given a /tmp of its own.
#define NEEDS_PRIVATE_TMP()                                                         \
    do {                                                                            \
        if (!rcp::test::sandboxObstacle().empty()) {                                \
            GTEST_SKIP() << "no /tmp of its own: " << rcp::test::sandboxObstacle(); \
        }                                                                           \
    } while (false)

/// For launches with random or hostile paths: nothing outside the test's own folder can be changed.
class ShutIn : public testing::Test {
  protected:
    void SetUp() override { NEEDS_PRIVATE_TMP(); }
};

/// Both lists are equal; says which element is the first that differs.
void expectList(const Texts& expected, const Texts& actual);

Texts splitLines(const std::string& text);
/// Whether one whole line of the text is `line`.
bool hasLine(const std::string& text, const std::string& line);
/// Whether one line begins with `start`.
bool hasLineStart(const std::string& text, const std::string& start);
/// The lines between the two that frame the launch parameters (or the provisioning ones).
Texts launchParameters(const std::string& log);
Texts provisioningParameters(const std::string& log);

/// The launch ended with status 255, no platform came up, nothing was printed, and the last record
/// of `log` is `record`, alone or with place and reason behind it.
void expectFatal(const Launch& launch, const std::string& log, const std::string& record);
/// Before the workspace's log is open, fatal errors leave their records in /tmp.
void expectEarlyFatal(const Launch& launch, const std::string& record);
void expectLateFatal(const Launch& launch, const std::string& record);
/// The same without the system's error text.
void expectBareRecord(const std::string& log, const std::string& record);

/// The JVM that the launcher names when nothing else is configured.
extern const char* const kDefaultJvm;

}  // namespace acceptance
