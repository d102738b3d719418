// A stand-in for the calls of Core Foundation that the program makes, so that platform/macos/ runs on
// Linux. It knows every object: a null, an object that was never made or is gone, and a release by whom
// it does not belong to end the process with a message, and so does an object that is left at the end.
// Any call that can fail does so when a test asks for it. It proves who owns what, the order of the
// calls and what happens when one fails. It does not prove what Apple's library answers: lists are
// parsed by libplist here, paths and letters by rules of its own.
#include "platform/utf8.h"
#include "tests/standin/macos/calls.h"

#include <CoreFoundation/CoreFoundation.h>
#include <locale.h>
#include <plist/plist.h>
#include <wctype.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

enum class Kind : CFTypeID { kData = 1, kString, kBoolean, kDictionary, kUrl, kOther };

struct Object {
    Kind kind;
    std::string bytes;              // of data; of a string in UTF-8; a URL's path
    plist_t node = nullptr;         // of what was parsed; a dictionary's or an array's own
    bool isTrue = false;            // of a boolean
    const Object* owner = nullptr;  // of a value that a dictionary has handed out
    bool isOwned = true;
    bool isDirectory = false;   // of a URL
    bool isChangeable = false;  // of a dictionary
};

[[noreturn]] void refuse(const char* what) {
    std::fprintf(stderr, "Core Foundation stand-in: %s\n", what);
    std::abort();
}

// What any other argument means is for Apple's library to know.
void mustBe(bool isRight, const char* wanted) {
    if (!isRight) {
        std::fprintf(stderr, "Core Foundation stand-in: %s is needed\n", wanted);
        std::abort();
    }
}

// An object that is gone stays here, so that its address is never that of another.
class Objects {
  public:
    ~Objects() {
        if (owned_ != 0) {
            refuse("an object is left at the end");
        }
    }

    const Object* make(Object object) {
        owned_ += object.owner == nullptr ? 1 : 0;
        auto made = std::make_unique<Object>(std::move(object));
        const Object* const address = made.get();
        all_[address] = std::move(made);
        return address;
    }

    Object& at(const void* address) {
        const auto found = all_.find(address);
        if (address == nullptr || found == all_.end()) {
            refuse(address == nullptr ? "null is no object" : "no such object");
        }
        Object& object = *found->second;
        if (!object.isOwned || (object.owner != nullptr && !object.owner->isOwned)) {
            refuse("an object is used after its release");
        }
        return object;
    }
    Object& at(const void* address, Kind kind) {
        Object& object = at(address);
        if (object.kind != kind) {
            refuse("an object of another kind is needed");
        }
        return object;
    }

    void drop(const void* address) {
        Object& object = at(address);
        if (object.owner != nullptr) {
            refuse("an object is released by whom it does not belong to");
        }
        if (object.node != nullptr) {
            plist_free(std::exchange(object.node, nullptr));
        }
        object.isOwned = false;
        --owned_;
    }

    [[nodiscard]] std::size_t owned() const { return owned_; }

  private:
    std::map<const void*, std::unique_ptr<Object>> all_;
    std::size_t owned_ = 0;
};

Objects& objects() {
    static Objects all;
    return all;
}

constexpr long kNone = -1;
long callsUntilFailure = kNone;
bool wasFailed = false;

bool fails() {
    if (callsUntilFailure == kNone || callsUntilFailure-- > 0) {
        return false;
    }
    callsUntilFailure = kNone;
    wasFailed = true;
    return true;
}

template <typename Ref>
Ref made(Object object) {
    return static_cast<Ref>(static_cast<const void*>(objects().make(std::move(object))));
}

std::string bytesOf(const UInt8* bytes, CFIndex length) {
    if (length < 0 || (bytes == nullptr && length > 0)) {
        refuse("null is no text");
    }
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

Boolean copyTo(char* buffer, CFIndex size, const std::string& text) {
    if (buffer == nullptr || size <= static_cast<CFIndex>(text.size())) {
        return 0;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return 1;
}

Kind kindOf(plist_t node) {
    switch (plist_get_node_type(node)) {
        case PLIST_DICT:
            return Kind::kDictionary;
        case PLIST_STRING:
            return Kind::kString;
        case PLIST_BOOLEAN:
            return Kind::kBoolean;
        default:
            return Kind::kOther;
    }
}

// Whatever the process's locale is.
std::u32string lowered(const std::string& text) {
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    std::u32string letters = rcp::platform::decodeUtf8(text).value();
    for (char32_t& letter : letters) {
        letter = static_cast<char32_t>(towlower_l(static_cast<wint_t>(letter), utf8));
    }
    return letters;
}

// "." goes, ".." takes the element before it, or stays where there is none.
std::string withoutDots(const std::string& path) {
    std::vector<std::string> elements;
    for (std::size_t at = 0; at != std::string::npos;) {
        const std::size_t slash = path.find('/', at + 1);
        const std::string element = path.substr(at + 1, slash - at - 1);
        if (element == ".." && !elements.empty() && elements.back() != "..") {
            elements.pop_back();
        } else if (element != ".") {
            elements.push_back(element);
        }
        at = slash;
    }
    std::string result;
    for (const std::string& element : elements) {
        result += "/" + element;
    }
    return result.empty() ? "/" : result;
}

}  // namespace

namespace rcp::test::macos {

std::size_t ownedObjects() {
    return objects().owned();
}

void failCall(std::size_t call) {
    callsUntilFailure = static_cast<long>(call);
    wasFailed = false;
}

bool hasFailed() {
    callsUntilFailure = kNone;
    return wasFailed;
}

}  // namespace rcp::test::macos

extern "C" {

void CFRelease(CFTypeRef object) {
    objects().drop(object);
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    return static_cast<CFTypeID>(objects().at(object).kind);
}

CFTypeID CFDictionaryGetTypeID() {
    return static_cast<CFTypeID>(Kind::kDictionary);
}

CFTypeID CFStringGetTypeID() {
    return static_cast<CFTypeID>(Kind::kString);
}

CFTypeID CFBooleanGetTypeID() {
    return static_cast<CFTypeID>(Kind::kBoolean);
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    return objects().at(boolean, Kind::kBoolean).isTrue ? 1 : 0;
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
    return fails() ? nullptr : made<CFDataRef>({Kind::kData, bytesOf(bytes, length)});
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
    return reinterpret_cast<const UInt8*>(objects().at(data, Kind::kData).bytes.data());
}

CFIndex CFDataGetLength(CFDataRef data) {
    return static_cast<CFIndex>(objects().at(data, Kind::kData).bytes.size());
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    const Object& holder = objects().at(dictionary, Kind::kDictionary);
    const plist_t node =
        plist_dict_get_item(holder.node, objects().at(key, Kind::kString).bytes.c_str());
    if (node == nullptr) {
        return nullptr;
    }
    Object value{kindOf(node), {}};
    value.owner = &holder;
    if (value.kind == Kind::kString) {
        value.bytes = plist_get_string_ptr(node, nullptr);
    } else if (value.kind == Kind::kBoolean) {
        std::uint8_t isTrue = 0;
        plist_get_bool_val(node, &isTrue);
        value.isTrue = isTrue != 0;
    }
    return objects().make(std::move(value));
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex capacity,
                                                     CFDictionaryRef dictionary) {
    mustBe(capacity == 0, "a dictionary without bounds");
    const Object& original = objects().at(dictionary, Kind::kDictionary);
    if (fails()) {
        return nullptr;
    }
    Object changeable{Kind::kDictionary, {}, plist_copy(original.node)};
    changeable.isChangeable = true;
    const auto copy = made<CFDictionaryRef>(std::move(changeable));
    return const_cast<CFMutableDictionaryRef>(copy);
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
    const Object& object = objects().at(dictionary, Kind::kDictionary);
    mustBe(object.isChangeable, "a dictionary that can be changed");
    plist_dict_set_item(object.node, objects().at(key, Kind::kString).bytes.c_str(),
                        plist_new_string(objects().at(value, Kind::kString).bytes.c_str()));
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex length,
                                    CFStringEncoding encoding, Boolean isExternal) {
    mustBe(encoding == kCFStringEncodingUTF8, "UTF-8");
    mustBe(isExternal == 0, "no external representation");
    const std::string text = bytesOf(bytes, length);
    const bool isText = rcp::platform::decodeUtf8(text).has_value();
    return fails() || !isText ? nullptr : made<CFStringRef>({Kind::kString, text});
}

CFIndex CFStringGetLength(CFStringRef text) {
    const auto letters = rcp::platform::decodeUtf8(objects().at(text, Kind::kString).bytes);
    CFIndex units = 0;
    for (const char32_t c : *letters) {
        units += c < 0x10000 ? 1 : 2;
    }
    return units;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    mustBe(encoding == kCFStringEncodingUTF8, "UTF-8");
    return fails() ? -1 : 3 * length;
}

Boolean CFStringGetCString(CFStringRef text, char* buffer, CFIndex size,
                           CFStringEncoding encoding) {
    mustBe(encoding == kCFStringEncodingUTF8, "UTF-8");
    const std::string& bytes = objects().at(text, Kind::kString).bytes;
    return fails() ? Boolean{0} : copyTo(buffer, size, bytes);
}

CFComparisonResult CFStringCompare(CFStringRef left, CFStringRef right,
                                   CFStringCompareFlags flags) {
    mustBe(flags == kCFCompareCaseInsensitive, "a comparison without case");
    const int order = lowered(objects().at(left, Kind::kString).bytes)
                          .compare(lowered(objects().at(right, Kind::kString).bytes));
    return order < 0 ? kCFCompareLessThan : order == 0 ? kCFCompareEqualTo : kCFCompareGreaterThan;
}

CFURLRef CFURLCreateFromFileSystemRepresentationRelativeToBase(CFAllocatorRef, const UInt8* bytes,
                                                               CFIndex length, Boolean isDirectory,
                                                               CFURLRef base) {
    const std::string path = bytesOf(bytes, length);
    mustBe(path.starts_with('/') == (base == nullptr), "a relative path's base, and no other,");
    mustBe((isDirectory != 0) == (base == nullptr), "a folder as the base, and no other,");
    const std::string folder =
        base == nullptr ? std::string() : objects().at(base, Kind::kUrl).bytes;
    if (fails() || path.empty()) {
        return nullptr;
    }
    // What is no UTF-8 is an empty path here.
    const std::string named = rcp::platform::decodeUtf8(path) ? path : std::string();
    const bool endsInSlash = folder.ends_with('/');
    Object url{Kind::kUrl, named.starts_with('/') || base == nullptr
                               ? named
                               : folder + (endsInSlash ? "" : "/") + named};
    url.isDirectory = isDirectory != 0;
    return made<CFURLRef>(std::move(url));
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean isAgainstBase, UInt8* buffer,
                                         CFIndex size) {
    mustBe(isAgainstBase != 0, "a path against the base");
    const std::string path = withoutDots(objects().at(url, Kind::kUrl).bytes);
    return fails() ? Boolean{0} : copyTo(reinterpret_cast<char*>(buffer), size, path);
}

CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef, CFDataRef data,
                                                  CFOptionFlags options, CFStringRef* error) {
    mustBe(options == kCFPropertyListImmutable, "a list that cannot be changed");
    mustBe(error == nullptr, "a call without error object");
    std::string bytes = objects().at(data, Kind::kData).bytes;
    if (fails()) {
        return nullptr;
    }
    bytes.erase(0, bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0);
    plist_t node = nullptr;
    const auto parse = bytes.starts_with("bplist00") ? plist_from_bin : plist_from_xml;
    parse(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
    return node == nullptr ? nullptr : made<CFPropertyListRef>({kindOf(node), {}, node});
}

CFDataRef CFPropertyListCreateData(CFAllocatorRef, CFPropertyListRef list,
                                   CFPropertyListFormat format, CFOptionFlags options,
                                   CFErrorRef* error) {
    mustBe(format == kCFPropertyListXMLFormat_v1_0, "a list as XML");
    mustBe(options == 0, "a list without options");
    mustBe(error == nullptr, "a call without error object");
    const Object& root = objects().at(list);
    char* text = nullptr;
    std::uint32_t length = 0;
    if (fails()) {
        return nullptr;
    }
    plist_to_xml(root.node, &text, &length);
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return text == nullptr ? nullptr : made<CFDataRef>({Kind::kData, std::string(text, length)});
}
}
