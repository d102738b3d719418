#include "launcher/rcp_launcher_main.h"

int main(int argc, char** argv) {
    return rcp::runLauncher(argc, argv);
}
