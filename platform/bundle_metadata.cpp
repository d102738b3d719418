#include "platform/bundle_metadata.h"

#include "platform/files.h"
#include "platform/text.h"
#include "platform/whole_file.h"

#include <stdio.h>

#include <array>

namespace rcp {
namespace {

constexpr char kIdentifierKey[] = "CFBundleIdentifier";
// Bundle metadata is a few kilobytes. A file beyond this is none.
constexpr std::size_t kLargestList = std::size_t{4} * 1024 * 1024;

std::optional<std::string> readBytes(const std::wstring& path) {
    Stream stream;
    open_file(stream, path, L"rb");
    if (!stream) {
        return std::nullopt;
    }
    std::string bytes;
    std::array<char, 16384> buffer;
    std::size_t length = 0;
    while ((length = fread(buffer.data(), 1, buffer.size(), stream.get())) > 0) {
        bytes.append(buffer.data(), length);
        if (bytes.size() > kLargestList) {
            return std::nullopt;
        }
    }
    if (ferror(stream.get()) != 0) {
        return std::nullopt;
    }
    return bytes;
}

}  // namespace

const std::wstring* getBundleIdentifier(std::span<const Argument> arguments) {
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == L"-bundleIdentifier" && arguments[i + 1] != L"-vmargs") {
            return &arguments[i + 1];
        }
    }
    return nullptr;
}

std::optional<platform::PropertyListDocument> createPropertiesListFromFile(
    const std::wstring& path) {
    const std::optional<std::string> bytes = readBytes(path);
    if (!bytes) {
        return std::nullopt;
    }
    return platform::parsePropertyList(*bytes);
}

bool writePropertyListToFile(const platform::PropertyListDocument& list, const std::wstring& path) {
    const std::string xml = list.toXml();
    if (xml.empty()) {
        return false;
    }
    WholeFile file(path);
    return file.open() && file.write(xml) && file.commit();
}

void updateInfoPlist(const std::wstring& path, const std::wstring& identifier) {
    std::optional<platform::PropertyListDocument> list = createPropertiesListFromFile(path);
    if (!list || !list->isDictionary()) {
        return;
    }
    const std::string wanted = toNarrow(identifier);
    if (wanted.empty()) {
        return;  // a bundle without identifier would not start any more
    }
    const std::optional<std::string> current = list->stringForKey(kIdentifierKey);
    if (current && platform::equalIgnoringCase(*current, wanted)) {
        return;
    }
    list->setString(kIdentifierKey, wanted);
    writePropertyListToFile(*list, path);
}

}  // namespace rcp
