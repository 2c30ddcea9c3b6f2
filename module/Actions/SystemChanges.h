#pragma once

#include <sys/time.h>
#include <wx/string.h>

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

namespace Norvik::KOB {

// All that actions do to the machine passes through here, but for the Apple Events
// of sessions and power. Under a rehearsal (see `Platform::Rehearsal`) nothing is done: each change
// is noted and answered as if it had gone well, or as it would fail if that can be told.

/// A program to start, as a request gives it.
struct ProcessRequest {
  wxString command;
  wxString type;  ///< "0" as the agent, "1" as a user, "2" in the user's session, "3" in a session
  wxString name;
  wxString password;
  wxString domain;
  wxString id;  ///< of a session
};

/// Runs the program and waits for it. 0 also for a type that there is none of, and for a session
/// that is no number: then nothing runs. Raises what the start raises.
int StartProcess(const ProcessRequest& request);

/// Results of `kill` and `settimeofday`, which leave the reason in `errno`.
int SendSignal(int processId, int signal);
int SetClock(const timeval& time);

/// Whether the file, or the empty folder, could be removed.
bool RemoveFile(const wxString& path);
void RemoveExtension(const std::string& extension, const boost::filesystem::path& folder,
                     const std::vector<boost::filesystem::path>& excluded);

/// A line for the shell: the format with the name in it as it stands. Warns of characters of the
/// name that the shell does not take for themselves.
std::string ShellLine(const char* format, const std::string& name);
/// Runs a line that changes the machine. Gives its standard output; nothing under a rehearsal.
std::string RunShell(const std::string& line);

}  // namespace Norvik::KOB
