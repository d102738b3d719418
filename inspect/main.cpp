// rcpinspect: what a launch will do, and why, without doing it.
#include "inspect/command_line.h"

int main(int argc, char** argv) {
    return rcp::inspect::run(argc, argv);
}
