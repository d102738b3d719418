#include "fuzz/fuzz.h"

#include "diagnostics/svc_debug.h"
#include "platform/text.h"

#include <locale.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace rcp::fuzz {
namespace {

// Inputs between two emptyings of the log, and the size of the texts that time is measured with.
constexpr int kInputsPerLog = 1000;
constexpr std::size_t kLargeText = std::size_t{64} * 1024;
constexpr std::uint32_t kOneIn = 256;

std::string makeFolder() {
    const char* const parent = getenv("TMPDIR");
    std::string path = std::string(parent == nullptr ? "/tmp" : parent) + "/fuzz-XXXXXX";
    require(mkdtemp(path.data()) != nullptr, "a folder can be made");
    return path;
}

void removeFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder(), ignored);
}

// An open log: records neither pile up in memory nor fill the disk.
void emptyLogNowAndThen() {
    static int inputs = 0;
    if (inputs++ % kInputsPerLog == 0) {
        require(truncate((folder() + "/rcplauncher.log").c_str(), 0) == 0, "the log is there");
    }
}

}  // namespace

void require(bool holds, const char* property) {
    if (!holds) {
        (void)std::fprintf(stderr, "does not hold: %s\n", property);
        abort();
    }
}

Fields::Fields(const std::uint8_t* data, std::size_t size)
    : rest_(reinterpret_cast<const char*>(data), size) {
    emptyLogNowAndThen();
}

std::string Fields::bytes() {
    const std::size_t end = rest_.find(kSeparator);
    std::string field(rest_.substr(0, end));
    isAtEnd_ = end == std::string_view::npos;
    rest_.remove_prefix(isAtEnd_ ? rest_.size() : end + 1);
    return field;
}

std::wstring Fields::text() {
    return wide(bytes());
}

std::vector<std::wstring> Fields::texts() {
    std::vector<std::wstring> all;
    while (!isAtEnd_) {
        all.push_back(text());
    }
    return all;
}

unsigned Fields::number() {
    const std::string field = bytes();
    return field.empty() ? 0 : static_cast<unsigned char>(field[0]);
}

std::wstring wide(std::string_view bytes) {
    std::wstring text = toWide(std::string(bytes));
    if (text.empty() || bytes.find('\0') != std::string_view::npos) {
        text.clear();
        for (const char byte : bytes) {
            text += static_cast<wchar_t>(static_cast<unsigned char>(byte));
        }
    }
    return text;
}

const std::string& folder() {
    static const std::string path = makeFolder();
    return path;
}

std::wstring fileWith(std::string_view bytes) {
    static const int file = memfd_create("input", MFD_CLOEXEC);
    require(ftruncate(file, 0) == 0 &&
                pwrite(file, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()),
            "the input can be written");
    return L"/proc/self/fd/" + std::to_wstring(file);
}

std::string contentOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool isChosen(std::wstring_view text) {
    std::uint32_t hash = 2166136261U;
    for (const wchar_t character : text) {
        hash = (hash ^ static_cast<std::uint32_t>(character)) * 16777619U;
    }
    return !text.empty() && hash % kOneIn == 0;
}

std::wstring manyTimes(std::wstring_view text) {
    std::wstring large;
    large.reserve(kLargeText + text.size());
    while (large.size() < kLargeText) {
        large += text;
    }
    return large;
}

double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

}  // namespace rcp::fuzz

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    using namespace rcp;
    fuzz::require(setlocale(LC_CTYPE, "C.UTF-8") != nullptr, "there is a UTF-8 locale");
    fuzz::require(enableLogging(toWide(fuzz::folder())), "the log can be opened");
    (void)atexit(fuzz::removeFolder);
    return 0;
}
