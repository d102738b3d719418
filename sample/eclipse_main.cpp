// The program "eclipse" of the sample installation: what an execv hand-off starts. It gives the
// command line to the launcher library that lies beside it, in the way that the launcher itself
// does when it loads the library into its own process.
#include <dlfcn.h>
#include <strings.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr const char* kLibraryName = "eclipse_1615.so";
constexpr int kFailure = 1;

using SetInitialArgs = void (*)(int argc, char** argv, char* library);
using Run = int (*)(int argc, char** argv, char** vmArgs);

// The library that lies beside `program`; the launcher starts this program by its full path.
std::string libraryBeside(const std::string& program) {
    return program.substr(0, program.rfind('/') + 1) + kLibraryName;
}

// Cuts `argv` at "-vmargs" and returns what follows it; null when there is no such option.
char** splitAtVmArgs(int& argc, char** argv) {
    for (int i = 0; i < argc; ++i) {
        if (strcasecmp(argv[i], "-vmargs") == 0) {
            argv[i] = nullptr;
            argc = i;
            return argv + i + 1;
        }
    }
    return nullptr;
}

void reportLoaderError() {
    static_cast<void>(std::fprintf(stderr, "eclipse: %s\n", dlerror()));
}

template <typename Function>
Function entryPoint(void* library, const char* name) {
    void* const symbol = dlsym(library, name);
    if (symbol == nullptr) {
        reportLoaderError();
    }
    return reinterpret_cast<Function>(symbol);
}

}  // namespace

int main(int argc, char** argv) {
    std::string path = libraryBeside(argc > 0 ? argv[0] : "");
    void* const library = dlopen(path.c_str(), RTLD_NOW);
    if (library == nullptr) {
        reportLoaderError();
        return kFailure;
    }
    const auto setInitialArgs = entryPoint<SetInitialArgs>(library, "setInitialArgs");
    const auto run = entryPoint<Run>(library, "run");
    if (setInitialArgs == nullptr || run == nullptr) {
        return kFailure;
    }
    // The library starts this program anew with its initial arguments when it has to change the
    // library path, and run() edits the array it gets: each needs an array of its own.
    std::vector<char*> initial(argv, argv + argc + 1);
    // For the test that shows what is lost otherwise.
    const bool sharesOneArray = std::getenv("SAMPLE_ONE_ARRAY") != nullptr;
    setInitialArgs(argc, sharesOneArray ? argv : initial.data(), path.data());
    char** const vmArgs = splitAtVmArgs(argc, argv);
    return run(argc, argv, vmArgs);
}
