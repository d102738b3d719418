#include "diagnostics/format.h"

#include "diagnostics/directive.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>

namespace rcp {
namespace {

// Widths beyond this would only serve to exhaust memory; no message has one.
constexpr std::size_t kLongestShape = 8;

std::string formatNumber(const Directive& directive, const FormatArgument& argument) {
    const std::string spec =
        "%" + std::string(directive.shape) + "l" + std::string(1, directive.conversion);
    std::array<char, 512> buffer{};
    int length = 0;
    if (const long* value = std::get_if<long>(&argument)) {
        length = std::snprintf(buffer.data(), buffer.size(), spec.c_str(), *value);
    } else {
        length = std::snprintf(buffer.data(), buffer.size(), spec.c_str(),
                               *std::get_if<unsigned long>(&argument));
    }
    const auto written = static_cast<std::size_t>(length < 0 ? 0 : length);
    return {buffer.data(), std::min(written, buffer.size() - 1)};
}

// Empty when the argument is of the other kind than the directive asks for.
std::optional<std::string> formatOne(const Directive& directive, const FormatArgument& argument) {
    const bool isNumber =
        std::holds_alternative<long>(argument) || std::holds_alternative<unsigned long>(argument);
    if (directive.isText() == isNumber || directive.shape.size() > kLongestShape) {
        return std::nullopt;
    }
    if (isNumber) {
        return formatNumber(directive, argument);
    }
    if (const auto* wide = std::get_if<std::wstring_view>(&argument)) {
        return toUtf8(*wide);
    }
    return std::string(*std::get_if<std::string_view>(&argument));
}

void appendUtf8(std::string& out, char32_t code) {
    const auto byte = [&out](char32_t value) { out += static_cast<char>(value); };
    if (code < 0x80) {
        byte(code);
    } else if (code < 0x800) {
        byte(0xC0U | (code >> 6U));
        byte(0x80U | (code & 0x3FU));
    } else if (code < 0x10000) {
        byte(0xE0U | (code >> 12U));
        byte(0x80U | ((code >> 6U) & 0x3FU));
        byte(0x80U | (code & 0x3FU));
    } else {
        byte(0xF0U | (code >> 18U));
        byte(0x80U | ((code >> 12U) & 0x3FU));
        byte(0x80U | ((code >> 6U) & 0x3FU));
        byte(0x80U | (code & 0x3FU));
    }
}

}  // namespace

std::string expandFormat(std::string_view format, std::span<const FormatArgument> arguments) {
    std::string out;
    std::size_t used = 0;
    std::size_t at = 0;
    while (at < format.size()) {
        const std::size_t percent = format.find('%', at);
        out += format.substr(at, percent == std::string_view::npos ? percent : percent - at);
        if (percent == std::string_view::npos) {
            break;
        }
        const std::string_view rest = format.substr(percent);
        at = percent + 1;
        if (rest.starts_with("%%")) {
            out += '%';
            ++at;
            continue;
        }
        const std::optional<Directive> directive = readDirective(rest);
        std::optional<std::string> text;
        if (directive && used < arguments.size()) {
            text = formatOne(*directive, arguments[used]);
        }
        if (!text) {
            out += '%';
            continue;
        }
        out += *text;
        ++used;
        at = percent + directive->text.size();
    }
    return out;
}

std::string toUtf8(std::wstring_view text) {
    constexpr char32_t kReplacement = 0xFFFD;
    std::string out;
    out.reserve(text.size());
    for (const wchar_t character : text) {
        const auto code = static_cast<char32_t>(character);
        const bool isScalar = code < 0xD800 || (code > 0xDFFF && code <= 0x10FFFF);
        appendUtf8(out, isScalar ? code : kReplacement);
    }
    return out;
}

std::string_view cutAtCharacter(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) {
        return text;
    }
    const auto isContinuation = [&text](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
    };
    // A character has at most three continuation bytes; more are no UTF-8 and are cut anywhere.
    std::size_t end = limit;
    for (int steps = 0; steps < 3 && end > 0 && isContinuation(end); ++steps) {
        --end;
    }
    return text.substr(0, isContinuation(end) ? limit : end);
}

}  // namespace rcp
