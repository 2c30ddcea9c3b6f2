#include <boost/algorithm/string/trim.hpp>
#include <boost/filesystem/path.hpp>
#include <boost/format.hpp>
#include <chrono>

#include "common/commands/CommandRunner.h"
#include "common/files/DeleteExtension.h"
#include "common/files/Paths.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/ActionCodes.h"
#include "module/ActionPeriods.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "module/Actions/Mac/RemoteRequest.h"
#include "module/Actions/Mac/ToolText.h"
#include "module/Actions/ShellLine.h"
#include "module/Actions/Unix/UnixPrinters.h"
#include "module/Actions/ZebAgentUninstaller.h"

namespace Norvik::KOB {

namespace {

using Common::CommandRunner;
using Common::Paths;
using Common::TaskResponseInfo;
using std::chrono::seconds;

std::string Filled(const char* format, const std::string& argument) {
  return (boost::format(format) % argument).str();
}

void RemoveDocuments(const Paths::Type& type) {
  const boost::filesystem::path folder = Paths(type, true).AppData();
  Common::DeleteExtensionInPath(".jsonkob", folder, {folder / ".", folder / ".."});
}

}  // namespace

Common::ActionResponse RemoteAdministration::RemovePrinter(Parameters& parameters) {
  NORVIK_SCOPE();
  Response response;
  ReportStarted(parameters);
  if (!Requires(parameters, "name", response)) {
    SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FAILED, nullptr);
    return response;
  }
  std::string name = ReadText(parameters, "name");
  if (name.empty()) {
    Fail(parameters, response, "Printer name empty");
    return response;
  }
  boost::algorithm::trim(name);
  if (UnixPrinters().RemovePrinter(name)) {
    ReportFinished(parameters);
    RunOneShotAction(ACTION_INCREMENTAL_INVENTORY, SECONDS_GET_INVENTORY, nullptr);
  } else {
    // Deliberately not in the response: only the task's state reports it.
    SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FAILED,
                                Filled("Failed to remove printer: %1%", name).c_str());
  }
  return response;
}

Common::ActionResponse RemoteAdministration::RemoveSharedResources(Parameters& parameters) {
  NORVIK_SCOPE();
  Response response;
  ReportStarted(parameters);
  if (!Requires(parameters, "name", response)) return response;
  const std::string name = ReadText(parameters, "name");
  const auto removal = CommandRunner::ExecChange(ShellLine("sharing -r  \"%1%\" ", name));
  NORVIK_INFORMATION(Filled("Removing the shared resource: %1%", name));
  if (removal.output.find("unable") != std::string::npos) {
    Fail(parameters, response, Filled("Command execution failed: %1%", removal.output));
    return response;
  }
  std::string listing = CommandRunner::ExecCommand("sharing -l");
  // A removal that was only noted counts as done.
  if (removal.onlyNoted) listing = WithoutShare(listing, name);
  // Deliberately anywhere in the listing: a name that is part of another word counts as listed.
  if (listing.find(name) != std::string::npos) {
    Fail(parameters, response, Filled("It was not possible to remove the resource: %1%", name));
    NORVIK_WARNING(
        "It was not possible to remove the resource; therefore, no inventory was taken.");
    return response;
  }
  NORVIK_INFORMATION("The resource was successfully deleted, starting KOB incremental inventory");
  ReportFinished(parameters);
  RunOneShotAction(ACTION_INCREMENTAL_INVENTORY, seconds(0), nullptr);
  return response;
}

Common::ActionResponse RemoteAdministration::UninstallSoftware(Parameters& parameters) {
  NORVIK_SCOPE();
  ReportStarted(parameters);
  const std::lock_guard<std::mutex> lock(uninstallLock_);
  if (!parameters.Exist("type")) parameters.Set("type", wxString("0"));
  Response response = RunProcess(parameters);
  if (response.success) {
    // Deliberately a second time: running the process has reported it already.
    ReportFinished(parameters);
    RunOneShotAction(Common::COMMON_ACTION_SOFTWARE_CHANGES, seconds(0), nullptr);
  }
  return response;
}

Common::ActionResponse RemoteAdministration::UninstallAgentWithCheck(Parameters& parameters) {
  NORVIK_SCOPE();
  const auto abort = [&](const std::string& reason) {
    SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FAILED, reason.c_str());
    return Response();
  };
  const auto abortWithError = [&](const std::string& reason) {
    NORVIK_ERROR(reason);
    return abort(reason);
  };
  if (!parameters.Exist("Guid")) return abortWithError("Uninstall aborted: parameters missing");
  boost::optional<std::string> local;
  if (const auto system = identification.lock()) local = system->GetAgentIdentifier();
  if (!local) return abortWithError("Uninstall aborted: parameters not available");

  const std::string requested = ReadText(parameters, "Guid");
  if (requested != *local) {
    NORVIK_WARNING(boost::format("Uninstall aborted: Untrusted action. parameters validation "
                                 "failed. Param=%1% Local=%2%") %
                   requested % *local);
    return abort("Untrusted action: parameters validation failed");
  }
  ZebAgentUninstaller().UninstallZebAgent();
  NORVIK_INFORMATION("Starting agent uninstall");
  CommandRunner::ExecChange("sh /opt/local/norvik/UninstallAgent.sh &");
  return {};
}

Common::ActionResponse RemoteAdministration::UninstallAgentWithoutCheck(Parameters&) {
  NORVIK_SCOPE();
  // In spite of the action's name the agent deliberately stays: only documents are removed.
  RemoveDocuments(Paths::OUTBOX);
  RemoveDocuments(Paths::PREVIOUS_INVENTORY);
  return {};
}

}  // namespace Norvik::KOB
