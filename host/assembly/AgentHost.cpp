#include "host/assembly/AgentHost.h"

#include <langinfo.h>

#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <clocale>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

#include "common/action/ActionCodes.h"
#include "common/commands/CommandRunner.h"
#include "common/database/AgentDatabase.h"
#include "common/files/Paths.h"
#include "common/log/FileLogger.h"
#include "common/log/Logger.h"
#include "host/HostError.h"
#include "host/OutputText.h"
#include "host/assembly/StandardChannels.h"
#include "host/configuration/ConfigurationFile.h"
#include "host/data/DataFolderCopy.h"
#include "host/identity/CopiedDataFolder.h"
#include "host/identity/HardwareIdentity.h"
#include "host/ledger/LedgerRecorder.h"
#include "platform/RecordedMachine.h"
#include "platform/ReplacementFile.h"

namespace Norvik::Host {

namespace {

using namespace Common;
namespace fs = boost::filesystem;

constexpr std::chrono::seconds STOP_LIMIT(5);

fs::path MakeDataFolder(const fs::path& folder) {
  Paths::SetDataFolder(folder);
  try {
    return Paths(Paths::DATA, true).AppData();
  } catch (const fs::filesystem_error& error) {
    throw std::runtime_error("cannot make the data folder " + folder.string() + ": " +
                             error.code().message());
  }
}

std::unique_ptr<const LoggerScope> OpenLog(const fs::path& folder, const AgentOptions& options) {
  auto log = MakeFileLogger(folder / LOG_FOLDER / LOG_FILE, options.logLevel);
  return std::make_unique<const LoggerScope>(
      std::make_shared<ListeningLogger>(std::move(log), options.logListener));
}

std::shared_ptr<ServerLink> MakeServerLink(const EffectiveConfiguration& configuration,
                                           const HardwareIdentity& hardware, const fs::path& folder,
                                           const std::shared_ptr<AgentIdentity>& identity,
                                           const std::shared_ptr<DocumentHistory>& history,
                                           IModule& module, AgentData data) {
  ServerOptions options = ServerOptionsOf(configuration.values.communications);
  if (options.address.empty()) return nullptr;
  options.dataFolder = folder;
  options.outbox = Paths(Paths::OUTBOX, true).AppData();
  options.extensions = module.GetOutputExtensionFiles();
  options.identity = identity;
  options.history = history;
  options.enrolmentSecret = configuration.enrolmentSecret;
  options.hardware = hardware;
  options.contact = std::make_shared<ServerContact>(
      data.GetOptionalString(SERVER_CONTACT_KEY).get_value_or(""),
      [data](const std::string& text) mutable { data.SetString(SERVER_CONTACT_KEY, text); });
  return std::make_shared<ServerLink>(options);
}

std::shared_ptr<DocumentHistory> RecoveredHistory(const fs::path& folder) {
  auto history = std::make_shared<DocumentHistory>(folder);
  history->Recover();
  return history;
}

/// Without the lock another agent may own an existing database, so it is opened read-only.
std::shared_ptr<AgentDatabase> OpenDataBase(const fs::path& folder, bool exclusive) {
  const bool readOnly =
      !exclusive && fs::exists(folder / SQLiteNames::SQLITE_CURRENT_DATABASE_NAME);
  return std::make_shared<AgentDatabase>(
      folder, readOnly ? AgentDatabase::Access::ReadOnly : AgentDatabase::Access::ReadWrite);
}

}  // namespace

EffectiveConfiguration UseConfiguration(const AgentOptions& options, const fs::path& dataFolder) {
  EffectiveConfiguration configuration =
      ReadConfiguration(options.configurationFile, dataFolder / CONFIGURATION_FILE);
  CommandRunner::SetQueryLimit(configuration.toolTimeLimit);
  if (options.newConfiguration) {
    configuration.values.communications = options.newConfiguration->values.communications;
    configuration.enrolmentSecret = options.newConfiguration->enrolmentSecret;
  }
  return configuration;
}

void RequireHandler(IModule& module, unsigned int code) {
  if (!module.GetAction(code, {}).name.empty()) return;
  throw UsageError("no handler is registered for the action " + std::to_string(code) +
                   "; `norvik-agent actions` lists those there are");
}

void UseUtf8Characters() {
  for (const char* name : {"", "C.UTF-8", "en_US.UTF-8", "UTF-8"}) {
    if (!std::setlocale(LC_CTYPE, name)) continue;
    if (std::string(::nl_langinfo(CODESET)) == "UTF-8") return;
  }
}

AgentHost::AgentHost(const AgentOptions& options) {
  UseUtf8Characters();
  const fs::path folder = dataFolder_ = MakeDataFolder(options.dataFolder);
  const EffectiveConfiguration configuration = UseConfiguration(options, folder);
  enrolmentSecret_ = configuration.enrolmentSecret;
  if (options.exclusive) {
    lock_ = std::make_unique<const DataFolderLock>(folder);
    RemoveLeftCopies(folder);
    if (!options.userProcess) history_ = RecoveredHistory(folder);
    Platform::RemoveLeftReplacements(folder.string());
  }
  logger_ = OpenLog(folder, options);
  const HardwareIdentity hardware = ReadHardwareIdentity();
  // A recorded machine is not this one, whose data folder it may use.
  const std::string uuid = Platform::IsMachineRecorded() ? "" : hardware.platformUuid;
  if (options.exclusive) ForgetOtherMachine(folder, uuid);
  if (history_) keeping_ = std::make_unique<KeepingScope>(history_, configuration.history);
  AgentParts parts;
  parts.userProcess = options.userProcess;
  parts.dataBase = dataBase_ = OpenDataBase(folder, options.exclusive);
  const auto identity =
      std::make_shared<AgentIdentity>(folder / IDENTITY_FILE, options.exclusive ? uuid : "");
  parts.identity = identity;
  parts.configuration = ForModule(configuration, identity->Get().identifier);
  parts.communications = communications_ = std::make_shared<Communications>();
  parts.actions = actionSystem_ =
      std::make_shared<ActionSystem>(AgentData(parts.dataBase, AGENT_DATA_TABLE));
  actionSystem_->SetTaskReporter([communications = communications_](const TaskResponseInfo& s) {
    communications->ReportTaskStatus(s);
  });
  if (options.exclusive) {
    ledger_ = std::make_unique<const ProgressObserverScope>(std::make_shared<LedgerRecorder>());
  }
  assembled_ = AssembleModule(options.moduleFile, std::move(parts));
  if (options.userProcess || !options.exclusive) return;
  server_ = MakeServerLink(configuration, hardware, folder, identity, history_, Module(),
                           AgentData(dataBase_, AGENT_DATA_TABLE));
  communications_->SetServer(server_);
  if (!server_) return;
  actionSystem_->SetAnswerReporter([weak = std::weak_ptr<ServerLink>(server_)](const auto& answer) {
    if (const auto server = weak.lock()) server->ReportTaskAnswer(answer);
  });
  server_->OnTasksListed([weak = std::weak_ptr<ActionSystem>(actionSystem_)](const auto& listed) {
    if (const auto actions = weak.lock()) actions->KeepSchedules(listed);
  });
}

AgentHost::~AgentHost() {
  if (actionSystem_) actionSystem_->Stop();
}

ActionResponse AgentHost::Run(unsigned int code, const ActionParameters& parameters) {
  const ToolErrors toolErrors;
  ActionResponse response;
  std::exception_ptr failure;
  try {
    response = actionSystem_->RunAction(Module().GetAction(code, parameters));
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Action %1% failed: %2%") % std::to_string(code) % error.what());
    failure = std::current_exception();
  }
  actionSystem_->WaitIdle();
  if (server_) server_->SendReports();
  if (failure) std::rethrow_exception(failure);
  return response;
}

void AgentHost::ResumePeriodicActions() {
  AgentData data(dataBase_, AGENT_DATA_TABLE);
  for (const ActionName& known : ACTION_NAMES) {
    ModuleAction action = Module().GetAction(known.code, {});
    if (!action.name.empty()) actionSystem_->ResumePeriodic(known.code, std::move(action), data);
  }
}

bool AgentHost::StopActions() {
  if (actionSystem_->StopWithin(std::chrono::seconds(0))) return true;
  for (const auto& action : actionSystem_->Running()) {
    NORVIK_INFORMATION(boost::format("The stop waits up to %1% seconds for action %2%, which has "
                                     "run since %3%") %
                       std::to_string(STOP_LIMIT.count()) % action.label % TimeText(action.since));
  }
  if (actionSystem_->StopWithin(STOP_LIMIT)) return true;
  for (const auto& action : actionSystem_->Running()) {
    NORVIK_WARNING(boost::format("Action %1%, which has run since %2%, did not end in time; the "
                                 "process ends without it") %
                   action.label % TimeText(action.since));
  }
  return false;
}

void AgentHost::Queue(unsigned int code, const ActionParameters& parameters) {
  actionSystem_->RunOneShot(code, Module().GetAction(code, parameters), std::chrono::seconds(0));
}

}  // namespace Norvik::Host
