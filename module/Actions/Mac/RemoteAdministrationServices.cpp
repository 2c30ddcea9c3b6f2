#include <boost/format.hpp>
#include <list>

#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "module/Actions/Mac/RemoteRequest.h"
#include "module/Actions/SystemChanges.h"
#include "module/Inventory/ServicesSection.h"

namespace Norvik::KOB {

namespace {

using Common::ActionParameters;
using Common::ActionResponse;

/// What `launchctl` prints is not looked at, so that only a missing name is a failure.
ActionResponse ControlService(ActionParameters& parameters, const char* line) {
  ActionResponse response;
  if (Requires(parameters, "name", response)) {
    RunShell(ShellLine(line, ReadText(parameters, "name")));
  }
  return response;
}

/// Answers an operation on a service that this system's service manager does not know.
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
    // Deliberately the name twice and no description: servers know the rows so.
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

}  // namespace Norvik::KOB
