#include <libproc.h>
#include <signal.h>
#include <string.h>
#include <sys/sysctl.h>

#include <boost/format.hpp>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <utility>

#include "common/commands/Execute.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "module/Actions/Mac/RemoteRequest.h"
#include "module/Actions/Mac/ToolText.h"
#include "module/ProcessIds.h"
#include "platform/ChildProcess.h"
#include "platform/SystemChanges.h"

namespace Norvik::KOB {

/// Titles of the columns of `ListProcesses`.
const std::vector<std::string> titleName = {"Pid", "Name",   "Path",
                                            "Cpu", "Memory", "PercentMemory"};

namespace {

using TextCall = int (*)(int processId, void* buffer, std::uint32_t size);

std::string TextOf(TextCall call, int processId, const char* what) {
  char buffer[PROC_PIDPATHINFO_MAXSIZE] = {};
  if (call(processId, buffer, sizeof(buffer)) <= 0) {
    NORVIK_ERROR(boost::format("PID %1%: process %2% unknown") % std::to_string(processId) % what);
    return "Unknown";
  }
  return Common::EncodeUtf8Characters(std::string(buffer, ::strnlen(buffer, sizeof(buffer))));
}

/// Bytes of memory; below 1 if the size cannot be read.
std::int64_t MachineMemory() {
  int name[] = {CTL_HW, HW_MEMSIZE};
  std::int64_t size = 0;
  std::size_t length = sizeof(size);
  return ::sysctl(name, 2, &size, &length, nullptr, 0) == 0 ? size : 0;
}

/// The memory of a process in bytes, and its share of the machine's.
std::pair<std::string, std::string> MemoryOf(int processId) {
  rusage_info_v2 usage{};
  if (::proc_pid_rusage(processId, RUSAGE_INFO_V2, reinterpret_cast<rusage_info_t*>(&usage)) != 0) {
    NORVIK_DETAIL(boost::format("PID %1%: could not read memory via proc_pid_rusage") %
                  std::to_string(processId));
    return {"0", "0"};
  }
  return {std::to_string(usage.ri_phys_footprint),
          PercentText(usage.ri_phys_footprint, MachineMemory())};
}

/// A program to start, as a request describes it.
struct ProcessRequest {
  wxString command;
  wxString type;  ///< "0" as the agent, "1" as a user, "2" in the user's session, "3" in a session
  wxString name;
  wxString password;
  wxString domain;
  wxString id;  ///< of a session
};

/// Reads in the order of the table, up to the first parameter that is missing or no text.
ProcessRequest ReadProcessRequest(Common::ActionParameters& parameters) {
  ProcessRequest request;
  const std::pair<const char*, wxString*> fields[] = {
      {"cmd", &request.command},       {"type", &request.type},     {"name", &request.name},
      {"password", &request.password}, {"domain", &request.domain}, {"id", &request.id}};
  try {
    for (const auto& [name, value] : fields) *value = parameters.Get<wxString>(name);
  } catch (const std::exception&) {
    NORVIK_DETAIL("There are missing parameters");
  }
  return request;
}

/// Runs the program and waits for its end. 0 also for an unknown type and for a session that is no
/// number: nothing runs then. Throws what the start throws.
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

/// 0 also if the start throws: deliberately no failure for the server.
int TryStart(const ProcessRequest& request) {
  int result = 0;
  try {
    result = StartProcess(request);
  } catch (const std::exception& error) {
    NORVIK_INFORMATION(boost::format("Unable to execute commmand %s:%s") %
                       Common::ToUtf8(request.command) % error.what());
  }
  NORVIK_INFORMATION(boost::format("Execution Result:%d") % std::to_string(result));
  return result;
}

}  // namespace

Common::ActionResponse RemoteAdministration::ListProcesses(Parameters&) {
  NORVIK_SCOPE();
  Response response;
  AddTitles(response.table, titleName);
  for (const std::int32_t id : ProcessIds()) {
    if (id == 0) continue;
    const std::string number = std::to_string(id);
    const std::string name = TextOf(::proc_name, id, "name");
    const std::string path = TextOf(::proc_pidpath, id, "path");
    const std::string share =
        ReadProcessorShare(Platform::RunTask("/bin/ps", {"-o", "%cpu", "-p", number}));
    const auto [memory, percent] = MemoryOf(id);
    AddTextRow(response.table, {number, name, path, share, memory, percent});
  }
  return response;
}

Common::ActionResponse RemoteAdministration::RunProcess(Parameters& parameters) {
  NORVIK_SCOPE();
  Response response;
  ReportStarted(parameters);
  if (!parameters.Exist("cmd") || !parameters.Exist("type")) {
    response.text = "Invalid parameters";
    return response;
  }
  const ProcessRequest request = ReadProcessRequest(parameters);
  const int result = TryStart(request);
  response.success = result == 0;
  if (response.success) {
    ReportFinished(parameters);
  } else {
    Fail(parameters, response,
         (boost::format("Unable to execute command %s. Error code: %d") %
          Common::ToUtf8(request.command) % std::to_string(result))
             .str());
  }
  return response;
}

Common::ActionResponse RemoteAdministration::KillProcess(Parameters& parameters) {
  NORVIK_SCOPE();
  Response response;
  if (!Requires(parameters, "id", response)) return response;
  // Deliberately no check of the number: a text without digits gives 0, the agent's process group.
  const int processId = std::atoi(ReadText(parameters, "id").c_str());
  if (Platform::GetSystemChanges()->Kill(processId, SIGKILL) != 0) {
    response.text = ::strerror(errno);
  }
  return response;
}

}  // namespace Norvik::KOB
