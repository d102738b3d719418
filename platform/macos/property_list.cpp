// macOS: property lists through Core Foundation.
#include "platform/macos/cf_ref.h"
#include "platform/platform.h"
#include "platform/property_list_guard.h"

#include <cstddef>
#include <utility>

namespace rcp::platform {

struct PropertyListDocument::Native {
    CfRef<CFPropertyListRef> root;

    /// The root seen as a dictionary; null when it is none.
    [[nodiscard]] CFDictionaryRef dictionary() const {
        return CFGetTypeID(root.get()) == CFDictionaryGetTypeID()
                   ? static_cast<CFDictionaryRef>(root.get())
                   : nullptr;
    }

    /// The value under `key`, null when it is missing or of another type. The root keeps owning it.
    [[nodiscard]] CFTypeRef value(const std::string& key, CFTypeID type) const {
        const CfRef<CFStringRef> name = makeCfString(key);
        const CFTypeRef value = dictionary() == nullptr || !name
                                    ? nullptr
                                    : CFDictionaryGetValue(dictionary(), name.get());
        return value != nullptr && CFGetTypeID(value) == type ? value : nullptr;
    }
};

namespace {

std::optional<std::string> toUtf8(CFStringRef text) {
    const CFIndex size =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(text), kCFStringEncodingUTF8) + 1;
    if (size <= 0) {
        return std::nullopt;
    }
    std::string result(static_cast<std::size_t>(size), '\0');
    if (!CFStringGetCString(text, result.data(), size, kCFStringEncodingUTF8)) {
        return std::nullopt;
    }
    result.resize(result.find('\0'));
    return result;
}

CfRef<CFDataRef> makeData(const std::string& bytes) {
    return CfRef<CFDataRef>(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                         static_cast<CFIndex>(bytes.size())));
}

CfRef<CFPropertyListRef> parse(CFDataRef data) {
// Deprecated only for the sake of a call that also tells why it failed, which nobody here would
// read. In spite of its name it reads the binary form as well.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    return CfRef<CFPropertyListRef>(
        CFPropertyListCreateFromXMLData(nullptr, data, kCFPropertyListImmutable, nullptr));
#pragma clang diagnostic pop
}

}  // namespace

PropertyListDocument::PropertyListDocument(std::unique_ptr<Native> native)
    : native_(std::move(native)) {}
PropertyListDocument::PropertyListDocument(PropertyListDocument&&) noexcept = default;
PropertyListDocument& PropertyListDocument::operator=(PropertyListDocument&&) noexcept = default;
PropertyListDocument::~PropertyListDocument() = default;

bool PropertyListDocument::isDictionary() const {
    return native_->dictionary() != nullptr;
}

std::optional<std::string> PropertyListDocument::stringForKey(const std::string& key) const {
    const CFTypeRef text = native_->value(key, CFStringGetTypeID());
    return text == nullptr ? std::nullopt : toUtf8(static_cast<CFStringRef>(text));
}

bool PropertyListDocument::isTrue(const std::string& key) const {
    const CFTypeRef value = native_->value(key, CFBooleanGetTypeID());
    return value != nullptr && CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
}

void PropertyListDocument::setString(const std::string& key, const std::string& value) {
    const CFDictionaryRef dictionary = native_->dictionary();
    const CfRef<CFStringRef> name = makeCfString(key);
    const CfRef<CFStringRef> text = makeCfString(value);
    if (dictionary == nullptr || !name || !text) {
        return;
    }
    // What the parser returned cannot be changed, so a changeable copy takes its place.
    CfRef<CFMutableDictionaryRef> copy(CFDictionaryCreateMutableCopy(nullptr, 0, dictionary));
    if (!copy) {
        return;
    }
    CFDictionarySetValue(copy.get(), name.get(), text.get());
    native_->root = std::move(copy);
}

std::string PropertyListDocument::toXml() const {
    const CfRef<CFDataRef> data(CFPropertyListCreateData(
        nullptr, native_->root.get(), kCFPropertyListXMLFormat_v1_0, 0, nullptr));
    if (!data) {
        return {};
    }
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data.get())),
            static_cast<std::size_t>(CFDataGetLength(data.get()))};
}

std::optional<PropertyListDocument> parsePropertyList(const std::string& data,
                                                      std::size_t mostBytes) {
    if (guardPropertyList(data, mostBytes) == PropertyListForm::kRefused) {
        return std::nullopt;
    }
    const CfRef<CFDataRef> bytes = makeData(data);
    if (!bytes) {
        return std::nullopt;
    }
    CfRef<CFPropertyListRef> root = parse(bytes.get());
    if (!root) {
        return std::nullopt;
    }
    return PropertyListDocument(std::make_unique<PropertyListDocument::Native>(
        PropertyListDocument::Native{std::move(root)}));
}

}  // namespace rcp::platform
