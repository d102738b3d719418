#include "launcher/process_entry.h"

int main(int argc, char** argv) {
    return rcp::runLauncher(argc, argv);
}
