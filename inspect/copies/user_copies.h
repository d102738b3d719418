// The user's copies of the master files, and what the masters say otherwise by now: a launch makes a
// copy once and never again.
#pragma once

#include "inspect/check/examination.h"

#include <optional>
#include <string>
#include <vector>

namespace rcp::inspect {

/// One entry of a master file that the user's copy has not, or not with this value.
struct StaleEntry {
    std::wstring copy;    // the user's file
    std::wstring master;  // where the entry stands
    std::size_t line = 0;
    std::wstring key;
    std::wstring value;                 // in the master
    std::optional<std::wstring> users;  // in the copy; none when it lacks the key

    /// "KEY is VALUE in the user's copy, OTHER in its master".
    [[nodiscard]] std::string message() const;
};

/// Those of the installation's master files that the user has copies of. What a copy holds beside its
/// master's entries is the user's own.
std::vector<StaleEntry> staleEntries(const Examination& examination);

/// A file of the user's that a launch has begun to make and not ended.
struct IncompleteCopy {
    std::wstring file;
    std::string message;
};
std::vector<IncompleteCopy> incompleteCopies(const Examination& examination);

/// Those of these files, copy or master, that are too long to be compared.
std::vector<std::wstring> longFiles(const Examination& examination);

}  // namespace rcp::inspect
