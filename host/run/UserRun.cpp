#include "host/run/UserRun.h"

#include <utility>

#include "common/action/ActionCodes.h"
#include "common/log/Logger.h"
#include "host/ipc/AllowedMessages.h"

namespace Norvik::Host {

using namespace Common;

namespace {

/// The name of an action that the host runs itself; null for an action of the module.
const char* OwnActionName(unsigned int code) {
  switch (code) {
    case COMMON_ACTION_USER_MESSAGE:
      return "COMMON_ACTION_USER_MESSAGE";
    case COMMON_ACTION_SURVEY_DIALOG:
      return "COMMON_ACTION_SURVEY_DIALOG";
    default:
      return nullptr;
  }
}

}  // namespace

UserRun::UserRun(const AgentOptions& options, const boost::filesystem::path& socket, Show show)
    : show_(std::move(show)),
      host_(options),
      service_(std::make_shared<IpcUser>(socket)),
      messages_(std::make_shared<SerialActions>(host_.Actions())) {
  host_.GetCommunications().SetProcesses(service_);
  host_.Actions()->RunAction(host_.Module().GetAction(COMMON_ACTION_INIT, {}));
  host_.ResumePeriodicActions();
}

UserRun::~UserRun() {
  service_->Stop();
  host_.Actions()->Stop();
}

void UserRun::Start() {
  service_->Start([this](const IPCMessage& message, std::function<void()> handled) {
    messages_->Add(message.code, ActionFor(message), std::move(handled));
  });
  NORVIK_INFORMATION("The user's process runs");
}

ModuleAction UserRun::ActionFor(const IPCMessage& message) {
  const char* const own = OwnActionName(message.code);
  if (!own) return host_.Module().GetAction(message.code, ParametersOf(message));
  ModuleAction action;
  action.name = own;
  action.handler = [this, message](ActionParameters&) {
    show_(message.key, message.value);
    return ActionResponse();
  };
  return action;
}

bool UserRun::Stop() {
  NORVIK_INFORMATION("The user's process stops");
  service_->Stop();
  return host_.StopActions();
}

}  // namespace Norvik::Host
