// Programs and libraries as they say of themselves what they are.
//
// Input: the file.
#include "fuzz/fuzz.h"
#include "inspect/handoff/elf.h"

#include <algorithm>
#include <functional>

namespace {

using namespace rcp;
using rcp::fuzz::require;

constexpr std::size_t kLongestText = 4096;
constexpr std::size_t kMostLibraries = 512;
constexpr std::size_t kSymbol = 24;

bool isText(const std::string& text) {
    return text.size() <= kLongestText && text.find('\0') == std::string::npos;
}

bool isWithin(std::string_view text, std::string_view file) {
    const std::less_equal<> isNotBehind;
    return text.empty() || (isNotBehind(file.data(), text.data()) &&
                            isNotBehind(text.data() + text.size(), file.data() + file.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    const auto image = inspect::readElf(file);
    require(!image || inspect::looksLikeElf(file), "what is no ELF file is not taken for one");
    if (!image) {
        return 0;
    }
    require(!image->machine.empty(), "the machine is told");
    require(isText(image->interpreter), "the interpreter is a path");
    require(image->libraries.size() <= kMostLibraries, "the libraries have a bound");
    require(image->searchPaths.size() <= 1, "there is one search path");
    require(std::all_of(image->libraries.begin(), image->libraries.end(), isText) &&
                std::all_of(image->searchPaths.begin(), image->searchPaths.end(), isText),
            "libraries and search paths are texts");
    const auto symbols = image->symbols.value_or(std::vector<std::string_view>());
    require(symbols.size() <= size / kSymbol, "every symbol has its bytes");
    require(std::all_of(symbols.begin(), symbols.end(),
                        [&](std::string_view symbol) { return isWithin(symbol, file); }),
            "symbols lie in the file");
    return 0;
}
