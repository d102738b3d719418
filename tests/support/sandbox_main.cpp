// Runs a program shut in, for the tests that are scripts.
//
// usage: sandbox --fresh|--kept FOLDER PROGRAM [ARGUMENT...]
//   --fresh  a new, empty file system takes the place of FOLDER, beside a new one for /tmp
//   --kept   FOLDER itself stays writable
//
// Where the system does not let a process be shut in, what may do harm ends with status 77: --fresh
// always, --kept with the rights of root. Without them --kept starts the program as it is.
//
// Everything else is read-only. An argument that names something below the machine's own /tmp is
// given the name by which that is seen in here, FOLDER included. RCP_SANDBOX_TMP is the device number
// of the new /tmp.
#include "tests/support/sandbox.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr int kUsage = 2;
constexpr int kSkipped = 77;
constexpr int kNotStarted = 127;

std::string nameInHere(const std::string& argument, const std::string& folder) {
    const std::string rest = argument.substr(argument.starts_with(folder) ? folder.size() : 0);
    const bool isInFolder = rest.size() < argument.size() && (rest.empty() || rest[0] == '/');
    return isInFolder ? rcp::test::sandboxFolder() + rest : rcp::test::seen(argument);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string option = argc < 4 ? "" : argv[1];
    if (option != "--fresh" && option != "--kept") {
        std::cerr << "usage: sandbox --fresh|--kept FOLDER PROGRAM [ARGUMENT...]\n";
        return kUsage;
    }
    const std::string folder = argv[2];
    rcp::test::enterSandbox(
        folder, option == "--kept" ? rcp::test::Shelter::kKept : rcp::test::Shelter::kFresh);
    const std::string& obstacle = rcp::test::sandboxObstacle();
    const bool isHarmful = option == "--fresh" || geteuid() == 0;
    if (!obstacle.empty()) {
        std::cerr << (isHarmful ? "skipped: " : "") << "not shut in: " << obstacle << "\n";
        if (isHarmful) {
            return kSkipped;
        }
    }
    std::vector<std::string> words;
    words.reserve(static_cast<std::size_t>(argc));
    for (int i = 3; i < argc; ++i) {
        words.push_back(nameInHere(argv[i], folder));
    }
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    struct stat tmp = {};
    if (obstacle.empty() && stat("/tmp", &tmp) == 0) {
        (void)setenv("RCP_SANDBOX_TMP", std::to_string(tmp.st_dev).c_str(), 1);
    }
    (void)execvp(pointers[0], pointers.data());
    std::cerr << "sandbox: " << words[0] << ": " << strerror(errno) << "\n";
    return kNotStarted;
}
