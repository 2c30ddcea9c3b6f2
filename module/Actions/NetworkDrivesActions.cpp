#include "module/Actions/NetworkDrivesActions.h"

#include <boost/format.hpp>
#include <boost/functional/hash.hpp>
#include <utility>

#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/ActionCodes.h"
#include "module/Actions/OtherProcesses.h"
#include "module/NetworkDrivesHandler/TextArchive.h"

namespace Norvik::KOB {

namespace {

// Parameter keys of the messages. The receiver checks for them, because their codes have other
// uses.
constexpr char DRIVE[] = "getNetworkDrives";
constexpr char REQUEST[] = "requestNetworkDrives";
constexpr char TRUNCATE[] = "truncateNetDrivesTable";

constexpr std::int32_t KIND = 1;
constexpr unsigned long long SERVICE_PROCESS = 0;

/// Log texts for a step that fails: one with room for the reason, one for an unknown reason.
struct FailureTexts {
  const char* known;
  const char* unknown;
};

constexpr FailureTexts SENDING = {"Sending IPC message : %s", "Unknown error sending IPC message"};

/// Runs the step. An exception is logged and not passed on.
template <class Step>
void LogExceptions(const FailureTexts& texts, Step step) {
  try {
    step();
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format(texts.known) % error.what());
  } catch (...) {
    NORVIK_ERROR(texts.unknown);
  }
}

void SaveDrive(Common::ActionParameters& parameters) {
  auto drive = Deserialize<NetworkDriveInfo>(Common::ToUtf8(parameters.Get<wxString>(DRIVE)));
  NORVIK_DETAIL(boost::format("Deserialized info: %s %s %s %s") % std::to_string(drive.id) %
                drive.unit % drive.path % drive.server);
  NetworkDrivesHandler::Save(std::move(drive));
}

}  // namespace

NetworkDrivesActions::NetworkDrivesActions(std::weak_ptr<Common::ModuleDependencies> dependencies,
                                           const Common::ActionFactory& factory,
                                           Common::HandlerMap& handlers, MappedDrives mappedDrives)
    : ActionPerformerBase(Common::PRODUCT_KOB, factory, std::move(dependencies)),
      mappedDrives_(std::move(mappedDrives)) {
  const auto registerHandler = [&](ActionCodes code, auto handler) {
    CreateActionRunner(handlers, code, handler, this);
  };
  registerHandler(ACTION_VALIDATE_NETWORK_DRIVES_KEY, &NetworkDrivesActions::OnValidateRegistryKey);
  if (processKind != 0) {
    registerHandler(ACTION_NETWORK_DRIVES, &NetworkDrivesActions::OnUserGetNetworkList);
    registerHandler(ACTION_USER_NETWORK_DRIVES_LIST, &NetworkDrivesActions::OnUserListRequest);
  } else {
    registerHandler(ACTION_NETWORK_DRIVES, &NetworkDrivesActions::OnCoreSaveData);
    registerHandler(ACTION_TRUNCATE_NETWORK_DRIVES,
                    &NetworkDrivesActions::OnTruncateNetDrivesTable);
  }
}

Common::ActionResponse NetworkDrivesActions::OnValidateRegistryKey(Common::ActionParameters&) {
  NORVIK_SCOPE();
  NORVIK_INFORMATION("Not implemented for this SO");
  return {};
}

Common::ActionResponse NetworkDrivesActions::OnCoreSaveData(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  if (parameters.Exist(DRIVE)) {
    LogExceptions({"Can not deserialize NetworkDriveInfo: %s",
                   "Unknown error in deserialize Network Drives."},
                  [&] { SaveDrive(parameters); });
  } else {
    NORVIK_DETAIL("There are no Network Mapped Drives to report.");
    OnSystemRequestNetworkDrives();
  }
  return {};
}

void NetworkDrivesActions::OnSystemRequestNetworkDrives() {
  NORVIK_SCOPE();
  LogExceptions(SENDING, [this] { SendToSessions(); });
}

void NetworkDrivesActions::SendToSessions() {
  const auto message = SetUpIPCMessage(ACTION_USER_NETWORK_DRIVES_LIST, REQUEST, REQUEST);
  const auto processes = RequireOtherProcesses(communications);
  const auto sessions = processes->GetSessions();
  if (sessions.empty()) {
    NORVIK_ERROR("There are no users available to receive IPC message");
    return;
  }
  for (const auto& session : sessions) {
    const std::string user = std::to_string(session.first);
    if (processes->Send(message, session.first)) {
      NORVIK_DETAIL(boost::format("IPC Message sent for user: %s") % user);
    } else {
      NORVIK_ERROR(boost::format("Message NOT sent for user: %s") % user);
    }
  }
}

Common::ActionResponse NetworkDrivesActions::OnTruncateNetDrivesTable(
    Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  if (!parameters.Exist(TRUNCATE)) {
    NORVIK_DETAIL("Wrong IPC message received");
    return {};
  }
  NORVIK_DETAIL("IPC Received message");
  LogExceptions({"Trying to truncate NetworkDrives table: %s",
                 "Unknown error trying to truncate NetworkDrives table"},
                [] { NetworkDrivesHandler::TruncateNetworkDrivesTable(); });
  return {};
}

Common::ActionResponse NetworkDrivesActions::OnUserListRequest(
    Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  if (!parameters.Exist(REQUEST)) {
    NORVIK_DETAIL("Wrong IPC message received");
    return {};
  }
  NORVIK_DETAIL("IPC Received message");
  LogExceptions({"Trying to get Network list: %s", "Unknown error trying to get Network list"},
                [&] { OnUserGetNetworkList(parameters); });
  return {};
}

Common::ActionResponse NetworkDrivesActions::OnUserGetNetworkList(Common::ActionParameters&) {
  NORVIK_SCOPE();
  if (auto drives = mappedDrives_()) {
    OnUserRequestTruncateNetDrivesTable();
    SendInfoToCore(std::move(*drives));
  } else {
    RunOneShotAction(ACTION_VALIDATE_NETWORK_DRIVES_KEY, std::chrono::seconds(0), nullptr);
  }
  return {};
}

void NetworkDrivesActions::OnUserRequestTruncateNetDrivesTable() {
  NORVIK_SCOPE();
  LogExceptions(SENDING, [this] { SendTruncation(); });
}

void NetworkDrivesActions::SendTruncation() {
  SendToService(SetUpIPCMessage(ACTION_TRUNCATE_NETWORK_DRIVES, TRUNCATE, TRUNCATE),
                {"IPC message sent", "IPC message NOT sent"});
}

void NetworkDrivesActions::SendInfoToCore(std::vector<NetworkDriveInfo>&& drives) {
  NORVIK_SCOPE();
  for (const NetworkDriveInfo& drive : drives) {
    LogExceptions(SENDING, [&] { SendDrive(drive); });
  }
}

void NetworkDrivesActions::SendDrive(NetworkDriveInfo drive) {
  drive.id = hashCodeFromString(drive.path);
  const std::string archive = Serialize(drive);
  NORVIK_DETAIL(boost::format("Network drives Serialized info: %s") % archive);
  SendToService(SetUpIPCMessage(ACTION_NETWORK_DRIVES, DRIVE, archive),
                {"IPC Message sent", "IPC Message NOT sent"});
}

void NetworkDrivesActions::SendToService(const Common::IPCMessage& message,
                                         const SendingTexts& texts) {
  if (RequireOtherProcesses(communications)->Send(message, SERVICE_PROCESS)) {
    NORVIK_DETAIL(texts.sent);
  } else {
    NORVIK_ERROR(texts.notSent);
  }
}

Common::IPCMessage NetworkDrivesActions::SetUpIPCMessage(const unsigned int& code,
                                                         const std::string& key,
                                                         const std::string& value) const {
  return {KIND, code, key, value};
}

unsigned long long NetworkDrivesActions::hashCodeFromString(const std::string& path) {
  return boost::hash<std::string>()(path);
}

}  // namespace Norvik::KOB
