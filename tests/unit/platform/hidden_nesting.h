// Property lists whose nesting stands in a comment for who reads bytes or UTF-8, and is markup in another encoding.
#pragma once

#include <string>

namespace rcp::test {

/// What hides the end of a CDATA section, and what ends that, in an encoding.
struct HidingEncoding {
    const char* name;
    const char* begin;
    const char* end;
};

// Either the last byte of a letter of UTF-8 is the first half of another letter, which takes the "]", or a sequence
// of plain characters says that all that follows are halves of letters.
inline constexpr HidingEncoding kHidingEncodings[] = {
    {"shift_jis", "\xC3\x83", ""},
    {"Shift_JIS", "\xC3\x83", ""},
    {"cp932", "\xC3\x83", ""},
    {"GBK", "\xE4\xBA\xBA", ""},
    {"GB18030", "\xE4\xBA\xBA", ""},
    {"Big5", "\xE4\xBA\xBA", ""},
    {"HZ", "~{", "~}"},
    {"HZ-GB-2312", "~{", "~}"},
    {"ISO-2022-JP", "\x1B$B", "\x1B(B"},
};

/// The section ends behind `begin` for who reads bytes, and behind the second "]]>" in the encoding.
inline std::string nestingHiddenBy(const std::string& begin, const std::string& end) {
    std::string text =
        "<plist><array><string><![CDATA[" + begin + "]]></string><!--" + end + "]]></string>";
    constexpr int kDepth = 60000;
    for (const char* tag : {"<array>", "</array>"}) {
        for (int i = 0; i < kDepth; ++i) {
            text += tag;
        }
    }
    return text + "<!-- --></array></plist>";
}

inline std::string declaring(const std::string& encoding, const std::string& list) {
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>" + list;
}

}  // namespace rcp::test
