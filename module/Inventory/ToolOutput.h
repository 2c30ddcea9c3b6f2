#pragma once

#include <wx/string.h>

#include <string>

namespace Norvik::KOB {

/// What a line for the shell prints, kept as it comes; empty if its tool is missing.
wxString OutputOf(const char* command);

/// Runs a line through the shell, for a tool that writes a file: what becomes of it shows there.
void RunToFile(const std::string& command);

/// The whole of a file; empty if it cannot be opened.
std::string ReadToolFile(const char* path);

}  // namespace Norvik::KOB
