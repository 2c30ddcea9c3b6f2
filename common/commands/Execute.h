#pragma once

#include <wx/string.h>

#include <string>

#include "common/Api.h"

namespace Norvik::Platform {
struct ChildAccount;
}

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
  /// The same as the user of a session (see `Platform::UserOfSession`). -1 also if nobody has it.
  /// @param processId takes the number of the process, which has ended by then; may be null
  int RunAs(int* processId, short session);

  const std::string& Output() const { return output_; }

 private:
  int Refuse(const std::string& reason);
  int RunUnder(const Platform::ChildAccount* account, const std::string& arguments, int* processId);

  std::string command_;
  std::string output_;
};

}  // namespace Norvik::Common
