// Writes the page of what a command tells, for the test that looks at it in a browser.
//
// usage: write_page JSON-FILE PAGE
#include "inspect/json/json.h"
#include "inspect/page/page.h"

#include <stdio.h>

#include <clocale>
#include <fstream>

int main(int argc, char** argv) {
    if (argc != 3) {
        fputs("usage: write_page JSON-FILE PAGE\n", stderr);
        return 2;
    }
    std::setlocale(LC_CTYPE, "C.UTF-8");
    std::ifstream input(argv[1]);
    const nlohmann::json data = nlohmann::json::parse(input);
    if (!rcp::inspect::writePage(data, argv[2])) {
        perror(argv[2]);
        return 1;
    }
    return 0;
}
