// Why something failed, as a report adds it to its text: " (place) : reason".
#pragma once

#include "diagnostics/argument.h"

#include <string>
#include <string_view>
#include <utility>

namespace rcp {

/// What is known beyond a message's own text. Every report states it. The system's reason is the
/// number that the failed call left, taken where it failed: a report never looks at errno, which by
/// then may be any other call's.
class Reason {
  public:
    /// The same with the place that the text itself does not name.
    [[nodiscard]] Reason at(std::wstring place) const {
        Reason result = *this;
        result.place_ = std::move(place);
        return result;
    }
    /// The same with what has brought it about, which no record tells: for whoever explains a launch.
    [[nodiscard]] Reason from(Origin origin) const {
        Reason result = *this;
        result.origin_ = std::move(origin);
        return result;
    }
    [[nodiscard]] const Origin& origin() const { return origin_; }
    /// What is written behind the message's text; empty when nothing is known.
    [[nodiscard]] std::string text() const;

  private:
    friend Reason noReason();
    friend Reason because(int error);
    friend Reason because(const char* words);

    int error_ = 0;
    const char* words_ = nullptr;
    std::wstring place_;
    Origin origin_;
};

/// No system call failed for the report: its text says all.
inline Reason noReason() {
    return {};
}
/// The system's text for the errno of the call that failed; nothing for 0.
inline Reason because(int error) {
    Reason reason;
    reason.error_ = error;
    return reason;
}
/// What the system's text would not tell, in the launcher's own words.
inline Reason because(const char* words) {
    Reason reason;
    reason.words_ = words;
    return reason;
}

}  // namespace rcp
