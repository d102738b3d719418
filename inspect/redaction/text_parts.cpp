#include "inspect/redaction/text_parts.h"

#include "launcher/vocabulary/options.h"
#include "platform/text.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace rcp::inspect {
namespace {

// Of the platform and of the JVM; the launcher has a table of its own.
constexpr std::string_view kOthersOptions[] = {"-arch",
                                               "-clean",
                                               "-consoleLog",
                                               "-dev",
                                               "-endSplash",
                                               "-eclipse",
                                               "-feature",
                                               "-framework",
                                               "-install",
                                               "-initialize",
                                               "-launcher",
                                               "-library",
                                               "-name",
                                               "-nl",
                                               "-noLazyRegistryCacheLoading",
                                               "-noregistrycache",
                                               "-os",
                                               "-showsplash",
                                               "-user",
                                               "-ws",
                                               "-server",
                                               "-client",
                                               "-ea",
                                               "-da",
                                               "-esa",
                                               "-dsa",
                                               "-enableassertions",
                                               "-disableassertions",
                                               "-verbose",
                                               "-showversion",
                                               "-jar",
                                               "-classpath",
                                               "-splash",
                                               "-help",
                                               "-agentlib",
                                               "-agentpath",
                                               "-javaagent"};

}  // namespace

bool isNameCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_' ||
           character == '.' || character == '-';
}

bool isAt(std::string_view text, std::size_t at, std::string_view characters) {
    return at < text.size() && characters.find(text[at]) != kNone;
}

std::size_t endOfLine(std::string_view text, std::size_t at) {
    return std::min(text.find('\n', at), text.size());
}

std::size_t endOfEntry(std::string_view text, std::size_t at) {
    std::size_t end = endOfLine(text, at);
    const auto goesOn = [&] {
        const std::string_view line = text.substr(at, end - at);
        return end < text.size() && (line.ends_with('\\') || line.ends_with("\\\r"));
    };
    while (goesOn()) {
        end = endOfLine(text, end + 1);
    }
    return end;
}

std::size_t firstOf(std::string_view text, std::size_t at, std::size_t end,
                    std::initializer_list<std::string_view> ends) {
    for (const std::string_view one : ends) {
        end = std::min(end, text.substr(0, end).find(one, at));
    }
    return end;
}

Name nameBefore(std::string_view text, std::size_t end) {
    while (end > 0 && isAt(text, end - 1, kBlanks)) {
        --end;
    }
    if (end > 0 && isAt(text, end - 1, "\"'")) {
        --end;
    }
    std::size_t begin = end;
    while (begin > 0 && isNameCharacter(text[begin - 1])) {
        --begin;
    }
    return {begin, end};
}

bool isFirstBehind(std::string_view front) {
    const bool isBehindPlace = front.size() > 1 && front.ends_with(':') &&
                               std::isdigit(static_cast<unsigned char>(front[front.size() - 2]));
    return isBehindPlace || front.find_first_not_of(" \t#!$+~\"'0123456789") == kNone;
}

std::size_t endOfQuoted(std::string_view text, std::size_t at) {
    const std::size_t line = endOfLine(text, at);
    std::size_t end = at + 1;
    while (end < line && text[end] != text[at]) {
        end += text[end] == '\\' ? 2 : 1;
    }
    return std::min(end, line);
}

bool isOption(std::string_view argument) {
    constexpr std::string_view kSigns = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz._-";
    const std::string_view name = argument.substr(0, argument.find_first_of("=:"));
    return name.starts_with("-D") || name.starts_with("-X") ||
           (name.starts_with("--") && name.find_first_not_of(kSigns) == kNone) ||
           (name.starts_with('-') && SecretNames().isSecret(name)) ||
           isOneOf(kOthersOptions, name) || findOptionRow(toWide(std::string(name))) != nullptr;
}

SecretPart narrowed(std::string_view text, SecretPart part) {
    std::string_view value = text.substr(part.begin, part.end - part.begin);
    const std::size_t equals = value.find('=');
    if (part.name.starts_with("vmarg.") && value.starts_with("-D") && equals != kNone) {
        part.begin += equals + 1;
        value.remove_prefix(equals + 1);
    }
    const std::size_t comma = value.find(',');
    if (value.starts_with("${") && comma != kNone && value.find('}') == value.size() - 1) {
        part.begin += comma + 1;
        --part.end;
    }
    return part;
}

void addPart(std::vector<SecretPart>& parts, std::string_view text, SecretPart part) {
    while (part.begin < part.end && isAt(text, part.begin, " \t\"'")) {
        ++part.begin;
    }
    while (part.end > part.begin && isAt(text, part.end - 1, " \t\r\n")) {
        --part.end;
    }
    part = narrowed(text, std::move(part));
    if (!isHarmless(part.name, text.substr(part.begin, part.end - part.begin))) {
        parts.push_back(std::move(part));
    }
}

}  // namespace rcp::inspect
