#include "inspect/messages.h"

#include "tests/inspect/paths.h"
#include "tests/support/sandbox.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>

namespace rcp::inspect {
namespace {

std::string firstId(const std::string& record) {
    const std::vector<const MessageRecord*> found = findMessages(record);
    return found.empty() ? "none" : found.front()->id;
}

std::string firstStep(const std::string& record) {
    const std::vector<const MessageRecord*> found = findMessages(record);
    return found.empty() ? "none" : found.front()->step;
}

TEST(Messages, EveryRowOfThePageIsInTheTable) {
    std::ifstream page(rcp::test::seen(INSPECT_SOURCES "/docs/messages.md"));
    std::size_t rows = 0;
    for (std::string line; std::getline(page, line);) {
        rows += line.starts_with("| ZYPRA") || line.starts_with("| Error: ") ? 1 : 0;
    }
    EXPECT_GT(rows, 100U);
    EXPECT_EQ(messages().size(), rows);
}

TEST(Messages, EveryOneHasATextAndARemedy) {
    for (const MessageRecord& message : messages()) {
        EXPECT_FALSE(message.text.empty()) << message.id;
        EXPECT_FALSE(message.remedy.empty()) << message.text;
        EXPECT_EQ(message.step.empty(), message.id.empty()) << message.text;
    }
}

// "%ls" becomes a path, and the system's reason follows.
std::string recordOf(const MessageRecord& message) {
    std::string text = message.id.empty() ? message.text : message.id + ": " + message.text;
    for (const std::string directive : {"%ls", "%lu", "%s", "%d"}) {
        for (std::size_t at = 0; (at = text.find(directive)) != std::string::npos;) {
            text.replace(at, directive.size(), directive == "%d" ? "7" : "/a b/c: d");
        }
    }
    return text + " : No such file or directory";
}

TEST(Messages, EveryRecordIsFoundByItsText) {
    for (const MessageRecord& message : messages()) {
        const std::vector<const MessageRecord*> found = findMessages(recordOf(message));
        ASSERT_FALSE(found.empty()) << recordOf(message);
        EXPECT_EQ(found.front(), &message) << recordOf(message);
    }
}

TEST(Messages, ATextDecidesBetweenThoseOfOneNumber) {
    EXPECT_EQ(firstStep("ZYPRA0050E: rcp.base.location property is missing from /x : Reason"),
              "start-up");
    EXPECT_EQ(firstStep("ZYPRA0050E:  plugin_customization.ini is missing from /x : Reason"),
              "platform options");
}

TEST(Messages, AnUnknownTextOfANumberGivesAllOfTheNumber) {
    const std::vector<const MessageRecord*> found = findMessages("ZYPRA0050E: of another version");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found.front()->id, "ZYPRA0050E");
}

TEST(Messages, WhatIsNoMessageIsNotFound) {
    EXPECT_EQ(firstId(""), "none");
    EXPECT_EQ(firstId("/usr/bin/java"), "none");
    EXPECT_EQ(firstId("ZYPRA9999E: unheard of"), "none");
    EXPECT_EQ(firstId("see ZYPRA0004E: malloc failed!"), "none");
}

TEST(Messages, OneWithoutANumberIsFoundByItsText) {
    const std::vector<const MessageRecord*> found =
        findMessages("Error: execv: /x/eclipse could not be started : Permission denied");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.front()->id, "");
    EXPECT_EQ(found.front()->text, "Error: execv: %ls could not be started");
}

TEST(Messages, ErrorsAreToldByTheirNumber) {
    EXPECT_TRUE(isErrorRecord("ZYPRA0004E: malloc failed!"));
    EXPECT_TRUE(isErrorRecord("Error: execv: x"));
    EXPECT_TRUE(isErrorRecord("ZYPRA0087I end: Unable to remove all files"));
    EXPECT_FALSE(isErrorRecord("ZYPRA0304I: We are main process"));
    EXPECT_FALSE(isErrorRecord("ZYPRA0086I begin: Information"));
    EXPECT_FALSE(isErrorRecord("/an/argument"));
    EXPECT_FALSE(isErrorRecord("ZYPRA"));
}

}  // namespace
}  // namespace rcp::inspect
