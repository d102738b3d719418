// The groups of findings, one function and one file each.
#pragma once

#include "inspect/check/examination.h"
#include "inspect/check/finding.h"

#include <set>
#include <string>
#include <vector>

namespace rcp::inspect {

void findInLines(const Examination& examination, Findings& findings);
void findInKeys(const Examination& examination, Findings& findings);
void findInValues(const Examination& examination, Findings& findings);
void findInPlaceholders(const Examination& examination, Findings& findings);
void findInJvmArguments(const Examination& examination, Findings& findings);
void findInExtensions(const Examination& examination, Findings& findings);
void findInFiles(const Examination& examination, Findings& findings);
/// What is said of a file that could not be opened.
std::string absenceText(const std::wstring& path, int error);
void findInHandOff(const Examination& examination, Findings& findings);
void findInBundle(const Examination& examination, Findings& findings);

/// All of them.
Findings findEverything(const Examination& examination);

/// The keys that "${prop.KEY}" names somewhere in the installation's files.
std::set<std::wstring> referredKeys(const Examination& examination);
/// The names of the configuration extensions that the launcher's file holds.
std::vector<std::wstring> extensionNames(const Examination& examination);

}  // namespace rcp::inspect
