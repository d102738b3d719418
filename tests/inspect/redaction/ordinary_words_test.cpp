#include "inspect/redaction/ordinary_words.h"

#include <gtest/gtest.h>

namespace rcp::inspect {
namespace {

TEST(OrdinaryWords, AreNotLookedFor) {
    for (const char* value : {"", "a1!", "java", "test", "Hund", "12345", "eclipse", "Workspace",
                              "PASSWORD", "installation", "plugincustomization"}) {
        EXPECT_FALSE(isDistinctive(value)) << value;
    }
}

TEST(OrdinaryWords, AreNoOtherValues) {
    for (const char* value : {"a1!x", "hunter2", "hunter", "123456", "ja va", "eclipse1",
                              "correct horse", "-Dx=java"}) {
        EXPECT_TRUE(isDistinctive(value)) << value;
    }
}

TEST(OrdinaryWords, AreNotTheNamesOfPeople) {
    for (const char* name : {"root", "java", "eclipse", "vm", "localhost"}) {
        EXPECT_TRUE(isOwnName(name)) << name;
    }
    for (const char* name : {"ann", "mark", "will", "desk7"}) {
        EXPECT_FALSE(isOwnName(name)) << name;
    }
}

}  // namespace
}  // namespace rcp::inspect
