// Prints the tables of a document from the tables of the program. scripts/check-docs compares them.
//
// usage: document_tables messages
#include "diagnostics/message_records.h"

#include <iostream>
#include <string_view>

namespace {

constexpr int kUsage = 2;

void printNumbered() {
    std::cout << "| id | text | step | cause and remedy |\n|---|---|---|---|\n";
    for (const auto& [id, text, step, remedy] : rcp::messageRecords()) {
        if (!id.empty()) {
            std::cout << "| " << id << " | " << text << " | " << step << " | " << remedy << " |\n";
        }
    }
}

void printUnnumbered() {
    std::cout << "| text | cause and remedy |\n|---|---|\n";
    for (const auto& [id, text, step, remedy] : rcp::messageRecords()) {
        if (id.empty()) {
            std::cout << "| " << text << " | " << remedy << " |\n";
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || std::string_view(argv[1]) != "messages") {
        std::cerr << "usage: document_tables messages\n";
        return kUsage;
    }
    printNumbered();
    std::cout << "\n";
    printUnnumbered();
    return 0;
}
