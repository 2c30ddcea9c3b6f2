#include "module/Actions/NetworkDrivesActions.h"

#include <utility>

#include "common/log/Logger.h"
#include "module/ActionCodes.h"

namespace Norvik::KOB {

namespace {

Common::ActionResponse SayThatItIsMissing() {
  NORVIK_WARNING("The exchange of network drives is not part of this build");
  return {};
}

}  // namespace

NetworkDrivesActions::NetworkDrivesActions(std::weak_ptr<Common::ModuleDependencies> dependencies,
                                           const Common::ActionFactory& factory,
                                           Common::HandlerMap& handlers)
    : ActionPerformerBase(Common::PRODUCT_KOB, factory, std::move(dependencies)) {
  const auto serve = [&](ActionCodes code, auto handler) {
    CreateActionRunner(handlers, code, handler, this);
  };
  serve(ACTION_VALIDATE_NETWORK_DRIVES_KEY, &NetworkDrivesActions::OnValidateRegistryKey);
  if (processKind != 0) {
    serve(ACTION_NETWORK_DRIVES, &NetworkDrivesActions::OnUserGetNetworkList);
    serve(ACTION_USER_NETWORK_DRIVES_LIST, &NetworkDrivesActions::OnUserListRequest);
  } else {
    serve(ACTION_NETWORK_DRIVES, &NetworkDrivesActions::OnCoreSaveData);
    serve(ACTION_TRUNCATE_NETWORK_DRIVES, &NetworkDrivesActions::OnTruncateNetDrivesTable);
  }
}

Common::ActionResponse NetworkDrivesActions::OnValidateRegistryKey(Common::ActionParameters&) {
  NORVIK_INFORMATION("Not implemented for this SO");
  return {};
}

Common::ActionResponse NetworkDrivesActions::OnCoreSaveData(Common::ActionParameters&) {
  NORVIK_SCOPE();
  return SayThatItIsMissing();
}

Common::ActionResponse NetworkDrivesActions::OnTruncateNetDrivesTable(Common::ActionParameters&) {
  NORVIK_SCOPE();
  return SayThatItIsMissing();
}

Common::ActionResponse NetworkDrivesActions::OnUserGetNetworkList(Common::ActionParameters&) {
  NORVIK_SCOPE();
  return SayThatItIsMissing();
}

Common::ActionResponse NetworkDrivesActions::OnUserListRequest(Common::ActionParameters&) {
  NORVIK_SCOPE();
  return SayThatItIsMissing();
}

}  // namespace Norvik::KOB
