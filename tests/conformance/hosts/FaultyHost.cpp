#include <boost/filesystem/operations.hpp>
#include <clocale>
#include <cstdlib>
#include <stdexcept>

#include "common/action/IModule.h"
#include "common/action/ModuleDependencies.h"
#include "common/database/DataBase.h"
#include "common/files/Paths.h"
#include "conformance/hosts/FaultyServices.h"
#include "conformance/hosts/Hosts.h"
#include "host/assembly/AgentHost.h"
#include "host/assembly/ModuleLoader.h"

namespace Norvik::Conformance {

namespace {

using namespace Common;
namespace fs = boost::filesystem;

void Change(const std::string& sentence) {
  V2::DataBase dataBase;
  dataBase.ExecuteSentence(sentence);
  dataBase.Commit();
}

/// A host of the agent's action system and services of its own.
class FaultyHost final : public HostAdapter {
 public:
  explicit FaultyHost(const std::string& fault) : fault_(fault) {}

  void Start(const HostStart& start) override {
    if (fault_.Is("no start")) throw std::runtime_error("no start");
    PrepareProcess(start.dataFolder);
    dataBase_ = std::make_shared<FaultyDataBase>(fault_, start.dataFolder);
    if (fault_.Is("the data is forgotten")) Change("DELETE FROM DATA");
    if (fault_.Is("a table is missing")) Change("DROP TABLE IF EXISTS RUD_STATE");
    system_ = std::make_shared<Host::ActionSystem>(AgentData(dataBase_, AGENT_DATA_TABLE));
    actions_ = std::make_shared<FaultyActions>(fault_, system_);
    identity_ = std::make_shared<FaultyIdentity>(fault_);
    communications_ = std::make_shared<FaultyCommunications>(fault_);
    dependencies_ = std::make_shared<ModuleDependencies>();
    dependencies_->configuration.kob.emplace();
    dependencies_->actionSystem = actions_;
    if (!fault_.Is("no identification")) dependencies_->identification = identity_;
    dependencies_->communications = communications_;
    dependencies_->dataBase = dataBase_;
    if (fault_.Is("no module")) return;
    module_ = Host::LoadModule(start.moduleFile, dependencies_);
    actions_->isModuleMade = true;
    system_->SetActionFactory([this](unsigned int code, const ActionParameters& parameters) {
      return module_->GetAction(code, parameters);
    });
    if (fault_.Is("a service ends early")) identity_.reset();
  }

  void Stop() override {
    static std::shared_ptr<FaultyIdentity> kept;
    if (fault_.Is("a service is kept")) kept = identity_;
    if (fault_.Is("services before the module")) identity_.reset();
    if (system_ && !fault_.Is("the module during a handler")) system_->Stop();
    if (fault_.Is("the module is kept")) static_cast<void>(module_.release());
    module_.reset();
    if (system_) system_->Stop();
    if (fault_.Is("the database before the actions")) dataBase_.reset();
    dependencies_.reset();
    communications_.reset();
    identity_.reset();
    actions_.reset();
    system_.reset();
    dataBase_.reset();
  }

 private:
  void PrepareProcess(const fs::path& folder) const {
    Host::UseUtf8Characters();
    if (fault_.Is("LC_CTYPE is C")) std::setlocale(LC_CTYPE, "C");
    if (fault_.Is("LC_NUMERIC is set") && !std::setlocale(LC_NUMERIC, "C.UTF-8")) {
      std::setlocale(LC_NUMERIC, "en_US.UTF-8");
    }
    Paths::SetDataFolder(folder);
    Paths(Paths::DATA, true);
    if (fault_.Is("a folder for all")) fs::permissions(folder, fs::perms(0755));
  }

  const Fault fault_;
  std::shared_ptr<FaultyDataBase> dataBase_;
  std::shared_ptr<Host::ActionSystem> system_;
  std::shared_ptr<FaultyActions> actions_;
  std::shared_ptr<FaultyIdentity> identity_;
  std::shared_ptr<FaultyCommunications> communications_;
  std::shared_ptr<ModuleDependencies> dependencies_;
  std::unique_ptr<IModule> module_;
};

}  // namespace

std::unique_ptr<HostAdapter> MakeFaultyHost(const std::string& fault) {
  return std::make_unique<FaultyHost>(fault);
}

}  // namespace Norvik::Conformance

/// The agent's own host; with NORVIK_HOST_FAULT a host with that fault.
Norvik::Conformance::HostAdapter* MakeNorvikHostAdapter() {
  const char* const fault = std::getenv("NORVIK_HOST_FAULT");
  return (fault ? Norvik::Conformance::MakeFaultyHost(fault)
                : Norvik::Conformance::MakeAgentHostAdapter())
      .release();
}
