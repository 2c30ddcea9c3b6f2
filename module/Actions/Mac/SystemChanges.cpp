#include "module/Actions/Mac/SystemChanges.h"

#include <signal.h>
#include <wx/crt.h>

#include <boost/format.hpp>

#include "common/commands/CommandRunner.h"
#include "common/commands/Execute.h"
#include "common/files/DeleteExtension.h"
#include "common/log/Logger.h"

namespace Norvik::KOB {

namespace {

/// What a shell does not take for itself: outside of quotes, and between double quotes.
constexpr char SHELL_CHARACTERS[] = " \t\n\r|&;<>()$`\\\"'*?[]#~{}";
constexpr char QUOTED_SHELL_CHARACTERS[] = "$`\\\"";

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

int SendSignal(int processId, int signal) { return ::kill(processId, signal); }

int SetClock(const timeval& time) { return ::settimeofday(&time, nullptr); }

bool RemoveFile(const wxString& path) { return wxRemove(path) == 0; }

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

std::string RunShell(const std::string& line) { return Common::CommandRunner::ExecCommand(line); }

}  // namespace Norvik::KOB
