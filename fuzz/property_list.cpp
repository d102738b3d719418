// Property lists of the system's own format: what the guard lets through, a parser may see.
#include "fuzz/fuzz.h"
#include "platform/platform.h"
#include "platform/property_list_guard.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace rcp;
    using platform::PropertyListForm;
    using rcp::fuzz::require;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const PropertyListForm form = platform::guardPropertyList(bytes);
    (void)platform::isSafeXmlPropertyList(bytes);
    (void)platform::isSafeBinaryPropertyList(bytes);
    std::optional<platform::PropertyListDocument> list = platform::parsePropertyList(bytes);
    require(form != PropertyListForm::kRefused || !list, "what is refused is not parsed");
    if (list) {
        list->setString("CFBundleIdentifier", "com.example.velmo");
        const std::string xml = list->toXml();
        if (!xml.empty() && list->isDictionary()) {
            require(platform::guardPropertyList(xml) == PropertyListForm::kXml,
                    "what is written is let through again");
            const auto again = platform::parsePropertyList(xml);
            require(again && again->stringForKey("CFBundleIdentifier") == "com.example.velmo",
                    "what is written is read back");
        }
    }
    fuzz::requireLinearTime(fuzz::wide(bytes), [](const std::wstring& large) {
        const std::string text(large.begin(), large.end());
        (void)platform::guardPropertyList(text);
        (void)platform::isSafeXmlPropertyList(text);
    });
    return 0;
}
