#pragma once

#include <wx/string.h>

#include <cstddef>
#include <string>

#include "common/Api.h"

namespace Norvik::Platform {
struct ChildAccount;
}

namespace Norvik::Common {

/// Runs a command line as a process of its own and waits for its end. The line is split into words
/// as a shell does (see `SplitCommandWords`), but no shell runs.
class NORVIK_COMMON_API Execute {
 public:
  static constexpr std::size_t MAX_OUTPUT = 1 << 20;

  explicit Execute(const wxString& command);

  /// Runs the command with further arguments, all in one text, after its own. Returns the exit
  /// code; 128 plus the signal's number if a signal ended it; -1 if it could not be started:
  /// `Output` then says why.
  int Run(const std::string& arguments);
  /// The same as another user, in that user's home. Domain and password are not used on this kind
  /// of system. -1 also if there is no such user, or if this process may not become it.
  int RunAs(const wxString& user, const wxString& domain, const wxString& password,
            const wxString& arguments);
  /// The same as the user of a session (see `Platform::UserOfSession`). -1 also if there is no such
  /// session.
  /// @param processId receives the number of the process, which has ended by then; may be null
  int RunAs(int* processId, short session);

  /// What the last run printed on standard output and standard error, up to `MAX_OUTPUT` bytes.
  const std::string& Output() const { return output_; }

 private:
  /// Reports a command that cannot be run, and returns -1.
  int Refuse(const std::string& reason);
  int RunUnder(const Platform::ChildAccount* account, const std::string& arguments, int* processId);

  std::string command_;
  std::string output_;
};

}  // namespace Norvik::Common
