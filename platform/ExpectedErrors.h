#pragma once

#include <set>
#include <string>

#include "platform/ChildProcess.h"

namespace Norvik::Platform {

// What a change would fail with, found without making it: 0, or an errno, as far as accounts and
// the file system show it.

/// The error of removing a file or an empty folder.
/// @param removed entries that count as removed, each as `CanonicalEntry` writes it
int ExpectedRemovalError(const std::string& path, const std::set<std::string>& removed);
/// One text for an entry whichever path leads to it: its folder without links or dots, and its
/// name.
std::string CanonicalEntry(const std::string& path);

/// The error of starting a program. The command must have words.
int ExpectedStartError(const ChildCommand& command);

}  // namespace Norvik::Platform
