#include "module/Actions/SystemChanges.h"

#include <signal.h>
#include <unistd.h>
#include <wx/crt.h>

#include <boost/format.hpp>
#include <cerrno>
#include <cstring>

#include "common/commands/CommandRunner.h"
#include "common/commands/Execute.h"
#include "common/files/DeleteExtension.h"
#include "common/log/Logger.h"
#include "common/text/Dates.h"
#include "platform/Rehearsal.h"

namespace Norvik::KOB {

namespace {

/// What a shell does not take for itself: outside of quotes, and between double quotes.
constexpr char SHELL_CHARACTERS[] = " \t\n\r|&;<>()$`\\\"'*?[]#~{}";
constexpr char QUOTED_SHELL_CHARACTERS[] = "$`\\\"";

using Platform::RehearsedStep;

/// Notes a system call. `result` and `errno` are what it would leave.
int Rehearse(const std::string& call, const std::string& detail, int result) {
  const char* const failure = result == 0 ? "" : std::strerror(errno);
  Platform::NoteStep({RehearsedStep::SYSTEM_CALL, call, detail, failure});
  return result;
}

/// Whom a number that is not one process's stands for.
std::string ReachOf(int processId) {
  if (processId == 0) return "all processes of the agent's own group";
  if (processId == -1) return "all processes that the agent may signal";
  return processId < 0 ? "all processes of the group " + std::to_string(-(processId + 1LL) + 1)
                       : "";
}

}  // namespace

int StartProcess(const ProcessRequest& request) {
  long type = 0;
  long session = 0;
  if (!request.type.ToLong(&type, 10)) return 0;
  Common::Execute program(request.command);
  switch (type) {
    case 0:
      return program.Run("");
    case 1:
      return program.RunAs(request.name, request.domain, request.password, "");
    case 2:
      return program.RunAs(nullptr, 0);
    case 3:
      // Deliberately cut to 16 bits: sessions have such numbers at the host's interface.
      return request.id.ToLong(&session, 10) ? program.RunAs(nullptr, static_cast<short>(session))
                                             : 0;
    default:
      return 0;
  }
}

int SendSignal(int processId, int signal) {
  if (!Platform::IsRehearsed()) return ::kill(processId, signal);
  const std::string call = "kill " + std::to_string(processId) + " " + std::to_string(signal);
  // Signal 0 reaches nobody, but fails as another would.
  return Rehearse(call, ReachOf(processId), ::kill(processId, 0));
}

int SetClock(const timeval& time) {
  if (!Platform::IsRehearsed()) return ::settimeofday(&time, nullptr);
  // Microseconds have six digits: the zeros in front count.
  const std::string fraction = std::to_string(1'000'000 + time.tv_usec).substr(1);
  const std::string call = "settimeofday " + std::to_string(time.tv_sec) + "." + fraction;
  const bool allowed = ::geteuid() == 0;
  if (!allowed) errno = EPERM;
  return Rehearse(call, Common::DateToISOCombinedUTC(time.tv_sec), allowed ? 0 : -1);
}

bool RemoveFile(const wxString& path) {
  if (Platform::IsRehearsed()) {
    return Platform::RehearseRemoval(static_cast<const char*>(path.fn_str()));
  }
  return wxRemove(path) == 0;
}

void RemoveExtension(const std::string& extension, const boost::filesystem::path& folder,
                     const std::vector<boost::filesystem::path>& excluded) {
  Common::DeleteExtensionInPath(extension, folder, excluded);
}

std::string ShellLine(const char* format, const std::string& name) {
  std::string line = (boost::format(format) % name).str();
  const bool quoted = std::string(format).find("\"%1%\"") != std::string::npos;
  // Deliberately not escaped: the server's requests may count on what the shell makes of them.
  if (name.find_first_of(quoted ? QUOTED_SHELL_CHARACTERS : SHELL_CHARACTERS) !=
      std::string::npos) {
    NORVIK_WARNING(boost::format("The name in this line holds characters of the shell: %1%") %
                   line);
  }
  return line;
}

std::string RunShell(const std::string& line) {
  if (!Platform::IsRehearsed()) return Common::CommandRunner::ExecCommand(line);
  Platform::NoteStep({RehearsedStep::SHELL, line, "", ""});
  return {};
}

}  // namespace Norvik::KOB
