#include "inspect/diff/recorded_launch.h"

#include <algorithm>

namespace rcp::inspect {
namespace {

using Texts = std::vector<std::string>;

constexpr std::string_view kBegin = "ZYPRA0132I: ===== Begin Launch Parameters =====\n";
constexpr std::string_view kEnd = "ZYPRA0133I: ===== End Launch Parameters =====\n";
constexpr std::string_view kArguments = "ZYPRA0030I: rcplauncher main arguments=\"";
constexpr std::string_view kArgumentsEnd = ", \"\n";
constexpr std::string_view kSeparator = ", ";
constexpr std::size_t kMostPieces = 16;  // of one argument

Texts split(std::string_view text, std::string_view separator) {
    Texts parts;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(separator, at), text.size());
        parts.emplace_back(text.substr(at, end - at));
        at = end + separator.size();
    }
    return parts;
}

// What stands between the two in the text; none when they do not.
std::optional<std::string_view> between(std::string_view text, std::string_view begin,
                                        std::string_view end) {
    const std::size_t from = text.find(begin);
    if (from == std::string_view::npos) {
        return std::nullopt;
    }
    text.remove_prefix(from + begin.size());
    const std::size_t to = text.find(end);
    return to == std::string_view::npos ? std::nullopt : std::optional(text.substr(0, to));
}

bool isAmong(const Texts& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

// How many pieces from `first` on make one element; 1 when none do.
std::size_t piecesOfElement(const Texts& pieces, std::size_t first, const Texts& elements) {
    std::string joined = pieces[first];
    const std::size_t end = std::min(pieces.size(), first + kMostPieces);
    for (std::size_t next = first + 1; next < end && !isAmong(elements, pieces[first]); ++next) {
        joined += std::string(kSeparator) + pieces[next];
        if (isAmong(elements, joined)) {
            return next + 1 - first;
        }
    }
    return 1;
}

std::string join(const Texts& pieces, std::size_t first, std::size_t count) {
    std::string joined = pieces[first];
    for (std::size_t i = 1; i < count; ++i) {
        joined += std::string(kSeparator) + pieces[first + i];
    }
    return joined;
}

}  // namespace

std::optional<Texts> recordedElements(std::string_view log) {
    const auto lines = between(log, kBegin, kEnd);
    if (!lines) {
        return std::nullopt;
    }
    Texts elements = split(*lines, "\n");
    elements.pop_back();  // behind the last line's end
    return elements;
}

std::optional<Texts> recordedArguments(std::string_view log, const Texts& elements) {
    const auto text = between(log, kArguments, kArgumentsEnd);
    if (!text) {
        return std::nullopt;
    }
    const Texts pieces = split(*text, kSeparator);
    Texts arguments;
    for (std::size_t at = 1; at < pieces.size();) {  // behind the program's name
        const std::size_t count = piecesOfElement(pieces, at, elements);
        arguments.push_back(join(pieces, at, count));
        at += count;
    }
    const std::size_t size = arguments.size();
    if (size >= 2 && arguments[size - 2] == "-vm" && !isAmong(arguments, "-restart")) {
        arguments.resize(size - 2);
    }
    return arguments;
}

}  // namespace rcp::inspect
