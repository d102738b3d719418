// Runs the acceptance tests, shut in where the system allows it.
#include "tests/acceptance/paths.h"
#include "tests/support/sandbox.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!testing::GTEST_FLAG(list_tests)) {
        rcp::test::enterSandbox(ACCEPTANCE_FOLDER);
    }
    return RUN_ALL_TESTS();
}
