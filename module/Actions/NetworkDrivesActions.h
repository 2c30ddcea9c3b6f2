#pragma once

#include <memory>

#include "common/action/ActionPerformerBase.h"

namespace Norvik::KOB {

/// Exchange of the mapped network drives between the users' processes, which see them, and the
/// service, which keeps them. Each side registers the handlers of its own.
class NetworkDrivesActions final : public Common::ActionPerformerBase {
 public:
  NetworkDrivesActions(std::weak_ptr<Common::ModuleDependencies> dependencies,
                       const Common::ActionFactory& factory, Common::HandlerMap& handlers);

 private:
  Common::ActionResponse OnValidateRegistryKey(Common::ActionParameters& parameters);
  // The service's side.
  Common::ActionResponse OnCoreSaveData(Common::ActionParameters& parameters);
  Common::ActionResponse OnTruncateNetDrivesTable(Common::ActionParameters& parameters);
  // The user's side.
  Common::ActionResponse OnUserGetNetworkList(Common::ActionParameters& parameters);
  Common::ActionResponse OnUserListRequest(Common::ActionParameters& parameters);
};

}  // namespace Norvik::KOB
