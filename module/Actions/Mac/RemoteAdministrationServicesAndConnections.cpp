#include <boost/format.hpp>
#include <list>
#include <utility>

#include "common/commands/CommandRunner.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "module/Actions/Mac/RemoteRequest.h"
#include "module/Actions/Mac/ToolText.h"
#include "module/Actions/ShellLine.h"
#include "module/Inventory/ServicesSection.h"
#include "platform/ChildProcess.h"

namespace Norvik::KOB {

namespace {

using Common::ActionParameters;
using Common::ActionResponse;

/// The output of `launchctl` is not checked: only a missing name is a failure.
ActionResponse ControlService(ActionParameters& parameters, const char* line) {
  ActionResponse response;
  if (Requires(parameters, "name", response)) {
    Common::CommandRunner::ExecChange(ShellLine(line, ReadText(parameters, "name")));
  }
  return response;
}

/// Refuses an operation that the service manager of this system does not have.
ActionResponse RefuseForService(ActionParameters& parameters, const char* refusal) {
  ActionResponse response;
  if (Requires(parameters, "name", response)) {
    response.text = (boost::format(refusal) % ReadText(parameters, "name")).str();
  }
  return response;
}

}  // namespace

Common::ActionResponse RemoteAdministration::ListServices(Parameters&) {
  NORVIK_SCOPE();
  Response response;
  AddTitles(response.table,
            {"Name", "DisplayName", "PathName", "Status", "StartMode", "StartName", "Description"});
  std::list<ServiceInfo> services;
  ServicesSection().GetInfo(services);
  for (const ServiceInfo& service : services) {
    const std::string name = Common::ToUtf8(service.name);
    // Deliberately the name twice and no description: servers expect such rows.
    AddTextRow(response.table,
               {name, name, Common::ToUtf8(service.command), Common::ToUtf8(service.state),
                Common::ToUtf8(service.startupMode), ""});
  }
  return response;
}

Common::ActionResponse RemoteAdministration::StartService(Parameters& parameters) {
  NORVIK_SCOPE();
  return ControlService(parameters, "launchctl start %1%");
}

Common::ActionResponse RemoteAdministration::StopService(Parameters& parameters) {
  NORVIK_SCOPE();
  return ControlService(parameters, "launchctl stop %1%");
}

Common::ActionResponse RemoteAdministration::RestartService(Parameters& parameters) {
  NORVIK_SCOPE();
  StopService(parameters);
  return StartService(parameters);
}

Common::ActionResponse RemoteAdministration::PauseService(Parameters& parameters) {
  NORVIK_SCOPE();
  return RefuseForService(parameters, "Pause service %1% is an operation unsupported on macOS");
}

Common::ActionResponse RemoteAdministration::ContinueService(Parameters& parameters) {
  NORVIK_SCOPE();
  return RefuseForService(parameters, "Continue service %1% is an operation unsupported on macOS");
}

Common::ActionResponse RemoteAdministration::ListNetworkConnections(Parameters&) {
  NORVIK_SCOPE();
  Response response;
  AddTitles(response.table, {"Protocol", "Local_address", "Local_port", "Remote_address",
                             "Remote_port", "State", "Local_Port_Name", "Remote_Port_Name"});
  for (auto& row : ReadConnections(Platform::RunTask("/usr/sbin/netstat", {"-aW"}))) {
    response.table.AddRow(std::move(row));
  }
  return response;
}

}  // namespace Norvik::KOB
