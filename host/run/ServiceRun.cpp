#include "host/run/ServiceRun.h"

#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <locale>
#include <sstream>
#include <utility>

#include "common/action/ActionCodes.h"
#include "common/database/DataBase.h"
#include "common/database/FreedSpace.h"
#include "common/log/Logger.h"
#include "host/actions/Errand.h"
#include "host/assembly/ModuleActionCodes.h"
#include "host/configuration/ConfigurationFile.h"
#include "host/configuration/ManagedPreferences.h"
#include "host/ipc/AllowedMessages.h"
#include "host/run/ConfigurationChange.h"
#include "platform/DescriptorLimit.h"

namespace Norvik::Host {

using namespace Common;

namespace {

constexpr char SESSION_PARAMETER[] = "SessionEventData";
/// Enough for all connections, the database and the tools. More would only slow down what closes
/// them all for a child.
constexpr std::size_t DESCRIPTORS = 1024;

/// Commands hear of the errors that their actions cause.
AgentOptions WithErrands(AgentOptions options) {
  options.logListener = [](const LogLine& line) {
    if (line.level != Logger::LEVEL_ERROR) return;
    if (const auto errand = Errand::Current()) errand->Logged(line);
  };
  return options;
}

ServiceLimits LimitsOfThisProcess() {
  const std::size_t descriptors = Platform::RaiseDescriptorLimit(DESCRIPTORS);
  const ServiceLimits limits = LimitsFor(descriptors);
  if (descriptors < DESCRIPTORS) {
    NORVIK_WARNING(boost::format("This process may open only %1% files, where %2% are wanted; at "
                                 "most %3% connections are served") %
                   std::to_string(descriptors) % std::to_string(DESCRIPTORS) %
                   std::to_string(limits.connections));
  }
  return limits;
}

}  // namespace

ServiceRun::ServiceRun(const AgentOptions& options, const boost::filesystem::path& socket)
    : configurationFile_(options.configurationFile),
      managedState_(StateOfManagedPreferences()),
      progress_(std::make_shared<ServiceProgress>()),
      listening_(progress_),
      reporting_(std::make_shared<ProgressEvents>()),
      host_(WithErrands(options)),
      processes_(std::make_shared<IpcService>(socket, LimitsOfThisProcess())),
      messages_(std::make_shared<SerialActions>(host_.Actions())),
      requests_(host_, configurationFile_, processes_, progress_) {
  host_.GetCommunications().SetProcesses(processes_);
  Initialise();
}

ServiceRun::~ServiceRun() {
  processes_->Stop();
  host_.Actions()->Stop();
}

/// Whether the module was last given this configuration.
bool ServiceRun::IsConfigurationKnown() const {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << host_.Configuration().kob.value();
  const std::string key = std::string("KOB_") + COMMON_PARAMETER_CONFIGURATION;
  return V2::DataBase::GetOptionalStringDataTable(key) == text.str();
}

/// A module whose configuration has changed gets it as a new one, after which it takes an
/// inventory.
void ServiceRun::Initialise() {
  const bool configured = !configurationFile_.empty() || !ReadManagedPreferences().empty() ||
                          boost::filesystem::exists(host_.DataFolder() / CONFIGURATION_FILE);
  ActionParameters parameters;
  if (configured) parameters.Set(COMMON_PARAMETER_CONFIGURATION, host_.Configuration());
  const bool isNew = configured && !IsConfigurationKnown();
  const auto code = isNew ? COMMON_ACTION_NEW_CONFIGURATION : COMMON_ACTION_INIT;
  host_.Actions()->RunAction(host_.Module().GetAction(code, parameters));
  host_.ResumePeriodicActions();
}

void ServiceRun::Start() {
  processes_->Start(
      {[this](const IPCMessage& message, const IpcService::Sender& sender,
              std::function<void()> handled) { RunMessage(message, sender, std::move(handled)); },
       [this](IpcService::SessionId session) { BeginSession(session); },
       [this](const std::string& request, const std::shared_ptr<IpcConnection>& from) {
         requests_.Answer(request, from);
       }});
  if (host_.Server()) host_.Server()->Start();
  NORVIK_INFORMATION("The service runs");
}

void ServiceRun::RunMessage(const IPCMessage& message, const IpcService::Sender& sender,
                            std::function<void()> handled) {
  const std::string reason = drives_.ReasonToDrop(sender.user, message);
  if (!reason.empty()) {
    NORVIK_WARNING(boost::format("A network drive of %1% is dropped: %2%") % sender.text % reason);
    return handled();
  }
  ModuleAction action = host_.Module().GetAction(message.code, ParametersOf(message));
  if (message.code == ACTION_TRUNCATE_NETWORK_DRIVES) {
    action.handler = [handler = std::move(action.handler)](ActionParameters& parameters) {
      ActionResponse response;
      GiveBackFreedSpace([&] { response = handler(parameters); });
      return response;
    };
  }
  messages_->Add(message.code, std::move(action), std::move(handled));
}

void ServiceRun::BeginSession(IpcService::SessionId session) {
  ActionParameters parameters;
  parameters.Set(SESSION_PARAMETER, session);
  host_.Queue(ACTION_VALIDATE_SURVEY_COMPLETION, parameters);
}

void ServiceRun::Reload() {
  const auto stored = host_.DataFolder() / CONFIGURATION_FILE;
  const auto file = configurationFile_.empty() ? stored : configurationFile_;
  managedState_ = StateOfManagedPreferences();
  try {
    ApplyConfiguration(host_, ReadConfiguration(configurationFile_, stored));
    const bool hasFile = boost::filesystem::exists(file);
    NORVIK_INFORMATION(boost::format("The configuration%1% is read again") %
                       (hasFile ? " in " + file.string() : ""));
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("The configuration is not read again: %1%") % error.what());
  }
}

void ServiceRun::ReloadIfManagedChanged() {
  if (StateOfManagedPreferences() == managedState_) return;
  NORVIK_INFORMATION("The managed preferences have changed");
  Reload();
}

bool ServiceRun::Stop() {
  NORVIK_INFORMATION("The service stops");
  processes_->Stop();
  if (host_.Server()) host_.Server()->Stop();
  for (const auto& run : progress_->ToJson()) {
    NORVIK_INFORMATION(boost::format("The stop finds an inventory of the %1% at \"%2%\"") %
                       run.at("inventory").get<std::string>() % run.at("at").get<std::string>());
  }
  return host_.StopActions();
}

}  // namespace Norvik::Host
