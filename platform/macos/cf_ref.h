// Ownership of Core Foundation objects.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <string_view>
#include <type_traits>

namespace rcp::platform {

struct ReleaseCf {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

/// Owns the object of a reference type such as CFStringRef that a function with "Create" or "Copy"
/// in its name returned, and releases it; null is allowed.
template <typename Ref>
using CfRef = std::unique_ptr<std::remove_pointer_t<Ref>, ReleaseCf>;

/// `text` as a string object; null when it is not well-formed UTF-8.
inline CfRef<CFStringRef> makeCfString(std::string_view text) {
    return CfRef<CFStringRef>(
        CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

}  // namespace rcp::platform
