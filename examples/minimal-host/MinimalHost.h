// The services of the smallest host that takes an inventory with the module. docs/embedding.md
// describes what else a real host does.
#pragma once

#include <dlfcn.h>

#include <boost/filesystem/path.hpp>
#include <clocale>
#include <deque>
#include <iostream>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

#include "common/action/IActionSystem.h"
#include "common/action/IModule.h"
#include "common/action/ModuleDependencies.h"
#include "common/database/AgentDatabase.h"
#include "common/files/Paths.h"
#include "common/log/FileLogger.h"
#include "machine/FirstInventory.h"
#include "machine/Gather.h"

namespace MinimalHost {

using namespace Norvik::Common;

/// Runs what the module starts. A real host has threads and timers; here an immediate action waits
/// until `RunWaiting`, because it must not run inside the call that starts it.
class Actions final : public IActionSystem {
 public:
  ActionResponse RunAction(ModuleAction action) override {
    return action.handler(action.parameters);
  }
  void QueueAction(ModuleAction action) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    waiting_.push_back(std::move(action));
  }
  void RunOneShot(unsigned int, ModuleAction action, std::chrono::seconds delay) override {
    if (delay.count() == 0) QueueAction(std::move(action));
  }
  // This program ends before any of these is due.
  void CreatePeriodic(unsigned int, ModuleAction, AgentData&, const ActionTiming&) override {}
  void ReplacePeriodic(unsigned int, ModuleAction, AgentData&, const ActionTiming&) override {}
  void AddSchedule(const Schedule&) override {}

  void RunWaiting() {
    for (ModuleAction action; Take(action);) {
      try {
        RunAction(std::move(action));
      } catch (const std::exception& error) {
        std::cerr << "an action failed: " << error.what() << "\n";
      } catch (...) {
        std::cerr << "an action failed\n";
      }
    }
  }

 private:
  bool Take(ModuleAction& action) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (waiting_.empty()) return false;
    action = std::move(waiting_.front());
    waiting_.pop_front();
    return true;
  }

  std::mutex mutex_;
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

inline std::unique_ptr<IModule> Load(const boost::filesystem::path& file,
                                     const std::weak_ptr<ModuleDependencies>& dependencies) {
  // Never closed: functions of the module may outlive its object.
  void* const library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) throw std::runtime_error(::dlerror());
  using Entry = IModule* (*)(const std::weak_ptr<ModuleDependencies>&);
  const auto entry = reinterpret_cast<Entry>(::dlsym(library, "GetAgentModuleObject"));
  if (!entry) throw std::runtime_error(::dlerror());
  return std::unique_ptr<IModule>(entry(dependencies));
}

/// The host. Its members are destroyed in the reverse order: the module first, the database last.
class Host {
 public:
  Host(const boost::filesystem::path& dataFolder, const boost::filesystem::path& moduleFile)
      : dataBase_(std::make_shared<AgentDatabase>(PrepareProcess(dataFolder))) {
    dependencies_->configuration.kob.emplace();
    dependencies_->actionSystem = actions_;
    dependencies_->identification = identity_;
    dependencies_->communications = communications_;
    dependencies_->dataBase = dataBase_;
    module_ = Load(moduleFile, dependencies_);
  }

  Actions& GetActions() { return *actions_; }
  IModule& Module() { return *module_; }

 private:
  /// The settings of the whole process, before anything uses them. Returns the data folder.
  static boost::filesystem::path PrepareProcess(const boost::filesystem::path& dataFolder) {
    if (!std::setlocale(LC_CTYPE, "C.UTF-8")) std::setlocale(LC_CTYPE, "UTF-8");
    Paths::SetDataFolder(dataFolder);
    const auto folder = Paths(Paths::DATA, true).AppData();
    Logger::SetInstance(MakeFileLogger(folder / "agent.log", Logger::LEVEL_DETAIL));
    return folder;
  }

  const std::shared_ptr<AgentDatabase> dataBase_;
  const std::shared_ptr<Actions> actions_ = std::make_shared<Actions>();
  const std::shared_ptr<Identity> identity_ = std::make_shared<Identity>();
  const std::shared_ptr<Communications> communications_ = std::make_shared<Communications>();
  const std::shared_ptr<ModuleDependencies> dependencies_ = std::make_shared<ModuleDependencies>();
  std::unique_ptr<IModule> module_;
};

}  // namespace MinimalHost
