// What the platform lock file holds: a decimal process id at its start, or nothing.
#pragma once

#include <string>
#include <string_view>

namespace rcp {

struct LockContent {
    enum Kind {
        kNothing,  // empty, blank or NUL bytes
        kNumber,
        kOther,
    };
    Kind kind = kNothing;
    long number = 0;  // the largest or smallest long for a number beyond it
};

/// Reads the content as scanf(3) "%ld" would: white space, a sign, digits; what follows is ignored.
LockContent parseLockContent(std::string_view content);

/// The id in decimal and ten blanks, which cover the digits of a longer id that stood there.
std::string lockContentFor(long processId);

/// What a cleared lock file begins with.
inline constexpr std::string_view kClearedLockContent = "              ";

/// The value of "-rcp_old_pid"; 0 when it is no number.
long oldProcessId(const std::wstring& value);

}  // namespace rcp
