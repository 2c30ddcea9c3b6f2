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

#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Actions/Mac/ProcessText.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "module/Actions/Mac/RemoteRequest.h"
#include "module/Actions/SystemChanges.h"
#include "module/ProcessIds.h"
#include "platform/Task.h"

namespace Norvik::KOB {

/// Titles of the columns of `ListProcesses`.
const std::vector<std::string> titleName = {"Pid", "Name",   "Path",
                                            "Cpu", "Memory", "PercentMemory"};

namespace {

using TextCall = int (*)(int processId, void* buffer, std::uint32_t size);

std::string AskForText(TextCall call, int processId, const char* what) {
  char buffer[PROC_PIDPATHINFO_MAXSIZE] = {};
  if (call(processId, buffer, sizeof(buffer)) <= 0) {
    NORVIK_ERROR(boost::format("PID %1%: process %2% unknown") % std::to_string(processId) % what);
    return "Unknown";
  }
  return Common::EncodeUtf8Characters(std::string(buffer, ::strnlen(buffer, sizeof(buffer))));
}

/// Bytes; below 1 if it cannot be told.
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

/// 0 also if the start raised: deliberately no failure, as the server counts it.
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
    const std::string name = AskForText(::proc_name, id, "name");
    const std::string path = AskForText(::proc_pidpath, id, "path");
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
  // Deliberately without a look at the number: what is none is 0, the agent's own process group.
  const int processId = std::atoi(ReadText(parameters, "id").c_str());
  if (SendSignal(processId, SIGKILL) != 0) response.text = ::strerror(errno);
  return response;
}

}  // namespace Norvik::KOB
