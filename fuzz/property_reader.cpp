// The property reader over whole files.
#include "diagnostics/svc_debug.h"
#include "fuzz/fuzz.h"
#include "launcher/properties/property_file.h"
#include "platform/text.h"

namespace {

using namespace rcp;
using rcp::fuzz::require;

PropertyList read(std::string_view file) {
    PropertyList list;
    getProperties(fuzz::fileWith(file), list);
    return list;
}

bool isSame(const Property& left, const Property& right) {
    return left.key == right.key && left.value == right.value &&
           left.origin.line == right.origin.line;
}

void checkEntry(const Property& entry) {
    require(entry.key.find_first_of(std::wstring(L"=: \t\n\r\0", 7)) == std::wstring::npos,
            "no key holds a separator, a line end or a NUL");
    require(entry.value.find(L'\0') == std::wstring::npos, "no value holds a NUL");
    const bool isTrimmed = entry.value.find_first_not_of(L' ') == std::wstring::npos ||
                           (entry.value.front() != L' ' && entry.value.back() != L' ');
    require(isTrimmed, "values are trimmed");
    require(entry.origin.line > 0, "every entry has a line");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string file(reinterpret_cast<const char*>(data), size);
    fuzz::Fields unused(data, size);
    setDebug(size % 16 == 1);
    const PropertyList list = read(file);
    std::size_t characters = 0;
    std::size_t line = 0;
    for (const Property& entry : list.entries()) {
        checkEntry(entry);
        characters += entry.key.size() + entry.value.size();
        require(entry.origin.line >= line, "entries are in file order");
        line = entry.origin.line;
    }
    require(characters <= size, "nothing is read that the file does not hold");

    // What the file holds is not changed by what is appended to it, and what is appended is found.
    const PropertyList longer = read(file + "\nend=1\n");
    require(longer.entries().size() > list.entries().size(), "an entry at the end is found");
    for (std::size_t i = 0; i < list.entries().size(); ++i) {
        require(isSame(list.entries()[i], longer.entries()[i]), "earlier entries stay");
    }
    // A continued entry takes the line in, perhaps as the digits of an escape.
    const Property& last = longer.entries().back();
    require(last.key != L"end" || last.value.ends_with(L'1'), "the last entry has its value");

    setDebug(false);
    fuzz::requireLinearTime(fuzz::wide(file),
                            [](const std::wstring& large) { (void)read(toNarrow(large)); });
    return 0;
}
