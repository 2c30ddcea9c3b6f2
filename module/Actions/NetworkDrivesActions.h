#pragma once

#include <boost/optional.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/action/ActionPerformerBase.h"
#include "common/ipc/ICommunicationIPC.h"
#include "module/NetworkDrivesHandler/NetworkDrivesHandler.h"

namespace Norvik::KOB {

/// Exchange of the mapped network drives between the users' processes, which see them, and the
/// service, which stores them. Each side registers its own handlers.
///
/// A round starts when the service asks each user's process, or by the timer of such a process. The
/// process asks the service to clear the store and then sends its drives, one message each; so the
/// drives of the last user replace all others. Failures are logged, and the next round tries again.
class NetworkDrivesActions final : public Common::ActionPerformerBase {
 public:
  /// Returns the same as `NetworkDrivesHandler::GetMappedDrivesFromAPI`.
  using MappedDrives = std::function<boost::optional<std::vector<NetworkDriveInfo>>()>;

  NetworkDrivesActions(std::weak_ptr<Common::ModuleDependencies> dependencies,
                       const Common::ActionFactory& factory, Common::HandlerMap& handlers,
                       MappedDrives mappedDrives = &NetworkDrivesHandler::GetMappedDrivesFromAPI);

 private:
  /// Log texts for a message that was sent and for one that was not.
  struct SendingTexts {
    const char* sent;
    const char* notSent;
  };

  Common::ActionResponse OnValidateRegistryKey(Common::ActionParameters& parameters);
  // In the service.
  Common::ActionResponse OnCoreSaveData(Common::ActionParameters& parameters);
  Common::ActionResponse OnTruncateNetDrivesTable(Common::ActionParameters& parameters);
  void OnSystemRequestNetworkDrives();
  void SendToSessions();
  // In a user's process.
  Common::ActionResponse OnUserGetNetworkList(Common::ActionParameters& parameters);
  Common::ActionResponse OnUserListRequest(Common::ActionParameters& parameters);
  void OnUserRequestTruncateNetDrivesTable();
  void SendTruncation();
  void SendInfoToCore(std::vector<NetworkDriveInfo>&& drives);
  void SendDrive(NetworkDriveInfo drive);
  void SendToService(const Common::IPCMessage& message, const SendingTexts& texts);

  Common::IPCMessage SetUpIPCMessage(const unsigned int& code, const std::string& key,
                                     const std::string& value) const;
  /// The id under which a drive with this path is stored.
  unsigned long long hashCodeFromString(const std::string& path);

  MappedDrives mappedDrives_;
};

}  // namespace Norvik::KOB
