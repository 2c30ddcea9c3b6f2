#pragma once

#include <wx/string.h>

#include <string>

namespace Norvik::KOB {

/// The unchanged output of a shell command line; empty if its tool is missing.
wxString OutputOf(const char* command);

/// Runs a shell command line whose tool writes a file. Reports no failure: the file shows it.
void RunToFile(const std::string& command);

/// The whole content of a file; empty without the file. One that cannot be read or is longer than
/// `CommandRunner::MAX_OUTPUT` is empty too, with a warning.
std::string ReadToolFile(const char* path);

}  // namespace Norvik::KOB
