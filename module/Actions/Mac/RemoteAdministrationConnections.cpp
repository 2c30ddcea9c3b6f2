#include "common/log/Logger.h"
#include "module/Actions/Mac/ConnectionText.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "module/Actions/Mac/RemoteRequest.h"
#include "platform/Task.h"

namespace Norvik::KOB {

Common::ActionResponse RemoteAdministration::ListNetworkConnections(Parameters&) {
  NORVIK_SCOPE();
  Response response;
  AddTitles(response.table, {"Protocol", "Local_address", "Local_port", "Remote_address",
                             "Remote_port", "State", "Local_Port_Name", "Remote_Port_Name"});
  for (const auto& cells : ReadConnections(Platform::RunTask("/usr/sbin/netstat", {"-aW"}))) {
    AddTextRow(response.table, cells);
  }
  return response;
}

}  // namespace Norvik::KOB
