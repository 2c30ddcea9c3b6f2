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
/// service, which keeps them. Each side registers the handlers of its own.
///
/// A round: the service asks each user's process, or such a process acts by its timer. It has the
/// service clear the store and then sends its drives, one message each; so the last user's drives
/// take the place of all others. What goes wrong is logged, and the next round tries again.
class NetworkDrivesActions final : public Common::ActionPerformerBase {
 public:
  /// Answers like `NetworkDrivesHandler::GetMappedDrivesFromAPI`.
  using MappedDrives = std::function<boost::optional<std::vector<NetworkDriveInfo>>()>;

  NetworkDrivesActions(std::weak_ptr<Common::ModuleDependencies> dependencies,
                       const Common::ActionFactory& factory, Common::HandlerMap& handlers,
                       MappedDrives mappedDrives = &NetworkDrivesHandler::GetMappedDrivesFromAPI);

 private:
  /// What the log is told of a message.
  struct SendingTexts {
    const char* sent;
    const char* notSent;
  };

  Common::ActionResponse OnValidateRegistryKey(Common::ActionParameters& parameters);
  // The service's side.
  Common::ActionResponse OnCoreSaveData(Common::ActionParameters& parameters);
  Common::ActionResponse OnTruncateNetDrivesTable(Common::ActionParameters& parameters);
  void OnSystemRequestNetworkDrives();
  void SendToSessions();
  // The user's side.
  Common::ActionResponse OnUserGetNetworkList(Common::ActionParameters& parameters);
  Common::ActionResponse OnUserListRequest(Common::ActionParameters& parameters);
  void OnUserRequestTruncateNetDrivesTable();
  void SendTruncation();
  void SendInfoToCore(std::vector<NetworkDriveInfo>&& drives);
  void SendDrive(NetworkDriveInfo drive);
  void SendToService(const Common::IPCMessage& message, const SendingTexts& texts);

  Common::IPCMessage SetUpIPCMessage(const unsigned int& code, const std::string& key,
                                     const std::string& value) const;
  /// The id of the drive with this path.
  unsigned long long hashCodeFromString(const std::string& path);

  MappedDrives mappedDrives_;
};

}  // namespace Norvik::KOB
