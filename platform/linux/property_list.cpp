// Linux: property lists through libplist. The library is loaded when a list is really to be read
// and never linked: hardly any start on Linux meets such a file, and every start would pay for it.
#include "diagnostics/svc_debug.h"
#include "platform/platform.h"
#include "platform/property_list_guard.h"
#include "platform/text.h"
#include "platform/utf8.h"

#include <dlfcn.h>
#include <plist/plist.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace rcp::platform {

namespace {

// The name carries the version of the interface that the header, found by the build, describes.
constexpr const char* kLibraryName = RCP_LIBPLIST;

/// The calls used here, each with the type that the library's header gives it, or gave it. None may be
/// made unless all were found.
struct Library {
    decltype(&::plist_from_xml) fromXml = nullptr;
    decltype(&::plist_from_bin) fromBinary = nullptr;
    decltype(&::plist_to_xml) toXml = nullptr;
    // One of them: newer libraries have the first, whose header lacks the second, older ones that alone.
    void (*freeMemory)(void*) = nullptr;
    void (*freeXml)(char*) = nullptr;
    decltype(&::plist_get_node_type) nodeType = nullptr;
    decltype(&::plist_dict_get_item) item = nullptr;
    decltype(&::plist_dict_set_item) setItem = nullptr;
    decltype(&::plist_get_string_ptr) text = nullptr;
    decltype(&::plist_get_bool_val) boolean = nullptr;
    decltype(&::plist_new_string) newText = nullptr;
    decltype(&::plist_free) free = nullptr;
    bool complete = false;
};

template <typename Function>
bool resolve(void* handle, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(handle, name));
    return function != nullptr;
}

Library load() {
    Library library;
    void* const handle = dlopen(kLibraryName, RTLD_NOW | RTLD_LOCAL);
    library.complete = handle != nullptr && resolve(handle, "plist_from_xml", library.fromXml) &&
                       resolve(handle, "plist_from_bin", library.fromBinary) &&
                       resolve(handle, "plist_to_xml", library.toXml) &&
                       (resolve(handle, "plist_mem_free", library.freeMemory) ||
                        resolve(handle, "plist_to_xml_free", library.freeXml)) &&
                       resolve(handle, "plist_get_node_type", library.nodeType) &&
                       resolve(handle, "plist_dict_get_item", library.item) &&
                       resolve(handle, "plist_dict_set_item", library.setItem) &&
                       resolve(handle, "plist_get_string_ptr", library.text) &&
                       resolve(handle, "plist_get_bool_val", library.boolean) &&
                       resolve(handle, "plist_new_string", library.newText) &&
                       resolve(handle, "plist_free", library.free);
    if (!library.complete) {
        report(noReason(), messages.propertyListLibraryMissing, toWide(kLibraryName));
    }
    return library;
}

/// The library, loaded by the first call and kept until the process ends.
const Library& loadedLibrary() {
    static const Library library = load();
    return library;
}

struct FreeNode {
    const Library* library;
    void operator()(plist_t node) const { library->free(node); }
};

struct FreeXml {
    const Library* library;
    void operator()(char* xml) const {
        library->freeMemory != nullptr ? library->freeMemory(xml) : library->freeXml(xml);
    }
};

/// An owned node with everything below it.
using Node = std::unique_ptr<void, FreeNode>;
static_assert(std::is_same_v<plist_t, void*>);

}  // namespace

struct PropertyListDocument::Native {
    const Library* library;
    Node root;

    /// The node under `key`, null when it is missing or of another type. The root keeps owning it.
    [[nodiscard]] plist_t node(const std::string& key, plist_type type) const {
        const bool isDictionary = library->nodeType(root.get()) == PLIST_DICT;
        const plist_t node = isDictionary ? library->item(root.get(), key.c_str()) : nullptr;
        return node != nullptr && library->nodeType(node) == type ? node : nullptr;
    }
};

PropertyListDocument::PropertyListDocument(std::unique_ptr<Native> native)
    : native_(std::move(native)) {}
PropertyListDocument::PropertyListDocument(PropertyListDocument&&) noexcept = default;
PropertyListDocument& PropertyListDocument::operator=(PropertyListDocument&&) noexcept = default;
PropertyListDocument::~PropertyListDocument() = default;

bool PropertyListDocument::isDictionary() const {
    return native_->library->nodeType(native_->root.get()) == PLIST_DICT;
}

std::optional<std::string> PropertyListDocument::stringForKey(const std::string& key) const {
    const plist_t node = native_->node(key, PLIST_STRING);
    if (node == nullptr) {
        return std::nullopt;
    }
    // The characters are the node's own.
    std::uint64_t length = 0;
    const char* const text = native_->library->text(node, &length);
    if (text == nullptr) {
        return std::nullopt;
    }
    return std::string(text, static_cast<std::size_t>(length));
}

bool PropertyListDocument::isTrue(const std::string& key) const {
    const plist_t node = native_->node(key, PLIST_BOOLEAN);
    std::uint8_t value = 0;
    if (node != nullptr) {
        native_->library->boolean(node, &value);
    }
    return value != 0;
}

void PropertyListDocument::setString(const std::string& key, const std::string& value) {
    // The library would write any bytes, and the file could not be read again.
    if (!isDictionary() || !decodeUtf8(key) || !decodeUtf8(value)) {
        return;
    }
    const Library& library = *native_->library;
    const plist_t text = library.newText(value.c_str());
    if (text != nullptr) {
        // The dictionary owns the text from here on.
        library.setItem(native_->root.get(), key.c_str(), text);
    }
}

std::string PropertyListDocument::toXml() const {
    char* bytes = nullptr;
    std::uint32_t length = 0;
    native_->library->toXml(native_->root.get(), &bytes, &length);
    if (bytes == nullptr) {
        return {};
    }
    const std::unique_ptr<char, FreeXml> owner(bytes, FreeXml{native_->library});
    return {bytes, length};
}

std::optional<PropertyListDocument> parsePropertyList(const std::string& data,
                                                      std::size_t mostBytes) {
    const PropertyListForm form = guardPropertyList(data, mostBytes);
    if (form == PropertyListForm::kRefused) {
        return std::nullopt;
    }
    const Library& library = loadedLibrary();
    if (!library.complete) {
        return std::nullopt;
    }
    // The library takes a byte order mark for the beginning of something else.
    const std::string_view mark = "\xEF\xBB\xBF";
    std::string_view list = data;
    list.remove_prefix(list.starts_with(mark) ? mark.size() : 0);
    const auto parse = form == PropertyListForm::kBinary ? library.fromBinary : library.fromXml;
    plist_t root = nullptr;
    parse(list.data(), static_cast<std::uint32_t>(list.size()), &root);
    if (root == nullptr) {
        return std::nullopt;
    }
    return PropertyListDocument(std::make_unique<PropertyListDocument::Native>(
        PropertyListDocument::Native{&library, Node(root, FreeNode{&library})}));
}

}  // namespace rcp::platform
