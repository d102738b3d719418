// rcpinspect: what a launch will do, and why, without doing it.
#include "inspect/command_line.h"
#include "inspect/options.h"

#include <exception>
#include <iostream>

// What no command expects, such as a lack of memory, is told too.
int main(int argc, char** argv) {
    try {
        return rcp::inspect::run(argc, argv);
    } catch (const std::exception& problem) {
        std::cerr << "rcpinspect: " << problem.what() << '\n';
        return rcp::inspect::kFailure;
    }
}
