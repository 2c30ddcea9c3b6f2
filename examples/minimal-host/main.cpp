// The smallest host that takes an inventory with the module:
//
//   minimal-host DATA_FOLDER [RECORDED_MACHINE]    takes one inventory and prints its document
//
// Read it from the bottom up. docs/embedding.md describes what else a real host does.
#include <dlfcn.h>

#include <boost/filesystem/operations.hpp>
#include <boost/optional.hpp>
#include <clocale>
#include <deque>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "common/LibraryVersion.h"
#include "common/action/ActionCodes.h"
#include "common/action/IActionSystem.h"
#include "common/action/IModule.h"
#include "common/action/ModuleDependencies.h"
#include "common/database/AgentDatabase.h"
#include "common/files/Archive.h"
#include "common/files/FileSealer.h"
#include "common/files/Paths.h"
#include "common/log/FileLogger.h"
#include "machine/FirstInventory.h"
#include "machine/Gather.h"
#include "platform/RecordedMachine.h"

namespace {

using namespace Norvik::Common;
namespace fs = boost::filesystem;

constexpr unsigned int TOTAL_INVENTORY = 1071;  // docs/embedding.md lists the codes

/// Runs what the module starts. A real host has threads and timers; here an immediate action waits
/// until `RunWaiting`, because it must not run inside the call that starts it.
class Actions final : public IActionSystem {
 public:
  ActionResponse RunAction(ModuleAction action) override {
    return action.handler(action.parameters);
  }
  void QueueAction(ModuleAction action) override { waiting_.push_back(std::move(action)); }
  void RunOneShot(unsigned int, ModuleAction action, std::chrono::seconds delay) override {
    if (delay.count() == 0) QueueAction(std::move(action));
  }
  // This program ends before any of these is due.
  void CreatePeriodic(unsigned int, ModuleAction, AgentData&, const ActionTiming&) override {}
  void ReplacePeriodic(unsigned int, ModuleAction, AgentData&, const ActionTiming&) override {}
  void AddSchedule(const Schedule&) override {}

  void RunWaiting() {
    for (; !waiting_.empty(); waiting_.pop_front()) RunAction(waiting_.front());
  }

 private:
  std::deque<ModuleAction> waiting_;
};

/// The identity of this agent, and the facts of the machine, which the document contains.
class Identity final : public IIdentificationSystem {
 public:
  FirstInventoryInfo GetFirstInventoryInfo() override {
    return Norvik::Machine::GatherFirstInventory(*smBios_);
  }
  std::weak_ptr<SmBios> GetSmBios() override { return smBios_; }
  std::string GetAgentIdentifier() override { return "minimal-host"; }
  // Without a token the module takes no inventory.
  std::string GetToken() override { return "none"; }

 private:
  std::shared_ptr<SmBios> smBios_ = Norvik::Machine::ReadSmBios();
};

/// No server and no processes of users. A host with users' processes also implements
/// `ICommunicationIPC` here.
class Communications final : public ICommunicationSystem {
 public:
  bool ProcessMessage(const IRestRequest&, IRestResponse&) override { return false; }
  void ReportTaskStatus(const TaskResponseInfo& status) override {
    std::cerr << "status " << status.status << " " << status.message << "\n";
  }
  void NewFileOnOutbox() override { std::cerr << "a file waits in the outbox\n"; }
};

std::unique_ptr<IModule> Load(const char* file, std::weak_ptr<ModuleDependencies> dependencies) {
  // Never closed: functions of the module may outlive its object.
  void* const library = ::dlopen(file, RTLD_NOW | RTLD_LOCAL);
  if (!library) throw std::runtime_error(::dlerror());
  using Entry = IModule* (*)(const std::weak_ptr<ModuleDependencies>&);
  const auto entry = reinterpret_cast<Entry>(::dlsym(library, "GetAgentModuleObject"));
  if (!entry) throw std::runtime_error(::dlerror());
  return std::unique_ptr<IModule>(entry(dependencies));
}

/// Prints the documents of the outbox, which were sealed with a key of this data folder.
void PrintDocuments(const fs::path& dataFolder) {
  const fs::path opened = dataFolder / "opened.zip";
  for (const auto& entry : fs::directory_iterator(Paths(Paths::OUTBOX, true).AppData())) {
    FileSealer(dataFolder / "keys").Open(entry.path(), opened);
    std::cout << ReadArchive(opened) << "\n";
    fs::remove(opened);
  }
}

void TakeInventory(const fs::path& dataFolder) {
  // 1. The settings of the whole process.
  if (!std::setlocale(LC_CTYPE, "C.UTF-8")) std::setlocale(LC_CTYPE, "UTF-8");
  Paths::SetDataFolder(dataFolder);
  Paths(Paths::DATA, true);
  Logger::SetInstance(MakeFileLogger(dataFolder / "agent.log", Logger::LEVEL_DETAIL));

  // 2. The services. The database is made first, so that it is destroyed last.
  const auto dataBase = std::make_shared<AgentDatabase>(dataFolder);
  const auto actions = std::make_shared<Actions>();
  const auto identity = std::make_shared<Identity>();
  const auto communications = std::make_shared<Communications>();
  const auto dependencies = std::make_shared<ModuleDependencies>();
  dependencies->configuration.kob.emplace();
  dependencies->actionSystem = actions;
  dependencies->identification = identity;
  dependencies->communications = communications;
  dependencies->dataBase = dataBase;

  // 3. The module, which is destroyed before the services.
  const auto module = Load(MODULE_FILE, dependencies);
  actions->RunAction(module->GetAction(COMMON_ACTION_INIT, {}));
  actions->RunAction(module->GetAction(TOTAL_INVENTORY, {}));
  actions->RunWaiting();
  PrintDocuments(dataFolder);
}

}  // namespace

int main(int count, char** arguments) try {
  // Before anything else of the library.
  RequireLibraryVersion("minimal-host");
  if (count < 2 || count > 3) {
    throw std::runtime_error("usage: minimal-host DATA_FOLDER [RECORDED_MACHINE]");
  }
  boost::optional<Norvik::Platform::RecordedMachine> machine;
  if (count == 3) machine.emplace(arguments[2]);
  TakeInventory(fs::absolute(arguments[1]));
  return 0;
} catch (const std::exception& error) {
  std::cerr << "minimal-host: " << error.what() << "\n";
  return 1;
}
