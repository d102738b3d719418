// Prints what documents say from the tables of the program; scripts/check-docs and
// tests/inspect/check-completion compare it.
//
// usage: document_tables messages|configuration|options|version
#include "diagnostics/format.h"
#include "diagnostics/message_records.h"
#include "launcher/process_entry.h"
#include "launcher/vocabulary/configuration_words.h"
#include "launcher/vocabulary/property_keys.h"

#include <iostream>
#include <string>
#include <string_view>

namespace {

constexpr int kUsage = 2;

// --- Messages ---

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

void printMessages() {
    printNumbered();
    std::cout << "\n";
    printUnnumbered();
}

// --- Configuration ---

std::string code(std::wstring_view name) {
    return "`" + rcp::toUtf8(name) + "`";
}

void printOptions() {
    std::cout << "| option | meaning | passed on |\n|---|---|---|\n";
    for (const auto& [name, value, meaning, isPassedOn, writer] : rcp::optionWords()) {
        std::cout << "| " << code(name) << (*value == '\0' ? "" : " ") << value << " | " << meaning
                  << (*isPassedOn == '\0' ? " |" : " | ") << isPassedOn << " |\n";
    }
    std::cout << "\n| written | what for |\n|---|---|\n";
    for (const auto& [name, when] : rcp::writtenOptionWords()) {
        std::cout << "| " << code(name) << " | " << when << " |\n";
    }
}

// In which files a key counts.
std::string filesOf(unsigned files) {
    std::string names;
    for (const auto& [file, name] :
         {std::pair{rcp::kLauncherFile, "launcher"}, std::pair{rcp::kArgsFile, "args"},
          std::pair{rcp::kJvmFile, "jvm"}, std::pair{rcp::kUserFile, "user"}}) {
        if ((files & file) != 0) {
            names += (names.empty() ? "" : ", ") + std::string(name);
        }
    }
    return names.empty() ? "computed" : names;
}

void printKeys(rcp::KeySection section) {
    std::cout << "\n| key | in | meaning, default |\n|---|---|---|\n";
    for (const rcp::PropertyKey& key : rcp::propertyKeys()) {
        if (key.section != section) {
            continue;
        }
        const std::string otherwise =
            key.otherwise == nullptr ? std::string() : rcp::toUtf8(key.otherwise);
        const rcp::FormatArgument arguments[] = {std::string_view(otherwise)};
        std::cout << "| " << code(key.key) << " | " << filesOf(key.files) << " | "
                  << rcp::expandFormat(key.meaning, arguments) << " |\n";
    }
}

void printPlaceholdersAndVariables() {
    std::cout << "\n| placeholder | stands for |\n|---|---|\n";
    for (const auto& [text, meaning] : rcp::placeholderWords()) {
        std::cout << "| " << code(text) << " | " << meaning << " |\n";
    }
    std::cout << "\n| variable | read | set for the JVM |\n|---|---|---|\n";
    for (const auto& [name, isRead, isSet] : rcp::variableWords()) {
        std::cout << "| " << code(name) << (*isRead == '\0' ? " |" : " | ") << isRead
                  << (*isSet == '\0' ? " |" : " | ") << isSet << " |\n";
    }
}

void printConfiguration() {
    using enum rcp::KeySection;
    printOptions();
    for (const rcp::KeySection section : {kInstallation, kJvm, kEnvironment, kProvisioning}) {
        printKeys(section);
    }
    printPlaceholdersAndVariables();
}

// The options of users alone, for the manual page and completion.
void printUsersOptions() {
    for (const rcp::OptionWords& words : rcp::optionWords()) {
        if (words.writer == rcp::Writer::kUser) {
            std::cout << rcp::toUtf8(words.name) << "\n";
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view wanted = argc == 2 ? argv[1] : "";
    if (wanted == "messages") {
        printMessages();
    } else if (wanted == "configuration") {
        printConfiguration();
    } else if (wanted == "options") {
        printUsersOptions();
    } else if (wanted == "version") {
        std::cout << rcp::toUtf8(rcp::kVersion) << "\n";
    } else {
        std::cerr << "usage: document_tables messages|configuration|options|version\n";
        return kUsage;
    }
    return 0;
}
