// What the fuzzers share: how an input is taken apart, how a property is checked, and how the code
// under test survives its own fatal errors.
#pragma once

#include "diagnostics/svc_debug.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rcp::fuzz {

/// Ends the fuzzer with `property` as the finding when it does not hold.
void require(bool holds, const char* property);

/// The fields of an input: what stands between the separators (U+001E, rare in real files). A field
/// that is not there is empty.
class Fields {
  public:
    static constexpr char kSeparator = '\x1E';

    Fields(const std::uint8_t* data, std::size_t size);
    /// The next field as bytes and as wide text.
    std::string bytes();
    std::wstring text();
    /// All that are left.
    std::vector<std::wstring> texts();
    /// The next field's first byte; 0 for an empty one.
    unsigned number();

  private:
    std::string_view rest_;
    bool isAtEnd_ = false;
};

/// Bytes as the launcher would read them. What is no UTF-8 becomes one character a byte, so that
/// every byte still means something.
std::wstring wide(std::string_view bytes);

/// Runs `work`; whether it ended the launch.
template <typename Work>
bool endsLaunch(const Work& work) {
    try {
        work();
    } catch (const LaunchEnded&) {
        return true;
    }
    return false;
}

/// A folder of this fuzzer's own, gone when it ends.
const std::string& folder();
/// The path of a file that holds `bytes` until the next call.
std::wstring fileWith(std::string_view bytes);
std::string contentOf(const std::string& path);

/// Every so many inputs (the choice depends on the input alone) `work` gets the input's text many
/// times over and must come back soon: time must not grow faster than the text.
template <typename Work>
void requireLinearTime(std::wstring_view text, const Work& work);

// --- what requireLinearTime is made of ---

bool isChosen(std::wstring_view text);
std::wstring manyTimes(std::wstring_view text);
double processorSeconds();

inline constexpr double kLongestSeconds = 2;

template <typename Work>
void requireLinearTime(std::wstring_view text, const Work& work) {
    if (!isChosen(text)) {
        return;
    }
    const std::wstring large = manyTimes(text);
    const double start = processorSeconds();
    work(large);
    require(processorSeconds() - start < kLongestSeconds, "time grows with the size alone");
}

}  // namespace rcp::fuzz
