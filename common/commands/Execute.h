#pragma once

#include <sys/types.h>
#include <wx/string.h>

#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// Starts a process from a command line, waits for it, and keeps what it printed on either channel.
/// The line is split into words as a shell does (quotes, backslashes), but no shell runs.
class NORVIK_COMMON_API Execute {
 public:
  explicit Execute(const wxString& command);

  /// Runs with further arguments, in one text, behind the command. Returns the exit code; 128 plus
  /// the signal's number if a signal ended it; -1 if it could not be started (see `Output`).
  int Run(const std::string& arguments);
  /// The same as another user, in that user's home. Domain and password are not used on this kind
  /// of system. -1 if there is no such user or this process may not become it.
  int RunAs(const wxString& user, const wxString& domain, const wxString& password,
            const wxString& arguments);
  /// The same as the user of a session.
  /// @param exitCode takes the exit code; may be null
  /// @return whether the process could be started
  bool RunAs(int* exitCode, short session);

  const std::string& Output() const { return output_; }

 private:
  std::string command_;
  std::string output_;
};

}  // namespace Norvik::Common
