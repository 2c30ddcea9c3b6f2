#include "host/rehearsal/RehearsalHost.h"

#include <boost/algorithm/string/erase.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/filesystem/operations.hpp>
#include <exception>
#include <utility>

#include "common/files/Paths.h"
#include "host/Identification.h"
#include "host/IdentityStore.h"
#include "host/ModuleLoader.h"
#include "host/StandardChannels.h"

namespace Norvik::Host {

namespace {

using namespace Common;
namespace fs = boost::filesystem;

/// What lies behind the first `count`.
template <class Item>
std::vector<Item> Behind(const std::vector<Item>& items, std::size_t count) {
  return {items.begin() + static_cast<std::ptrdiff_t>(count), items.end()};
}

}  // namespace

RehearsalHost::PathsScope::PathsScope(const fs::path& folder)
    : former(Paths(Paths::DATA, false).AppData()) {
  Paths::SetDataFolder(folder);
}

RehearsalHost::PathsScope::~PathsScope() { Paths::SetDataFolder(former); }

RehearsalHost::RehearsalHost(const AgentOptions& options,
                             const RehearsedCommunications::Sessions& sessions)
    : original_(options.dataFolder), copy_(options.dataFolder), paths_(copy_.Path()) {
  UseUtf8Characters();
  logger_ = std::make_unique<const LoggerScope>(
      std::make_shared<ListeningLogger>(nullptr, [this](const LogLine& line) {
        if (line.level > Logger::LEVEL_WARNING) return;
        const std::lock_guard<std::mutex> lock(logMutex_);
        logged_.emplace_back(line.level, line.text);
      }));
  dataBase_ = std::make_shared<AgentDatabase>(copy_.Path());
  identification_ = std::make_shared<Identification>(
      std::make_shared<IdentityStore>(copy_.Path() / IDENTITY_FILE));
  communications_ = std::make_shared<RehearsedCommunications>(sessions);
  actions_ = std::make_shared<RehearsedActions>(AgentData(dataBase_, AGENT_DATA_TABLE));

  dependencies_ = std::make_shared<ModuleDependencies>();
  dependencies_->configuration = ConfigurationOf(options, copy_.Path());
  dependencies_->identification = identification_;
  dependencies_->processKind = options.userProcess ? 1 : 0;
  dependencies_->actionSystem = actions_;
  dependencies_->communications = communications_;
  dependencies_->dataBase = dataBase_;
  module_ = LoadModule(options.moduleFile, dependencies_);
  actions_->SetActionFactory([this](unsigned int code, const ActionParameters& parameters) {
    return module_->GetAction(code, parameters);
  });
}

RehearsalHost::~RehearsalHost() = default;

RehearsedAction RehearsalHost::Run(unsigned int code, const ActionParameters& parameters) {
  const AgentState before = ReadAgentState(copy_.Path());
  const std::size_t stepsBefore = rehearsal_.Steps().size();
  const std::size_t startedBefore = actions_->Started().size();
  const std::size_t loggedBefore = logged_.size();
  RehearsedAction rehearsed;
  const ToolErrors toolErrors;
  try {
    ModuleAction action = module_->GetAction(code, parameters);
    rehearsed.response = action.handler(action.parameters);
    for (auto& rest : actions_->TakeContinuations()) rest.handler(rest.parameters);
  } catch (const std::exception& error) {
    rehearsed.failure = *error.what() ? error.what() : "the action raised an exception";
  }
  rehearsed.steps = Behind(rehearsal_.Steps(), stepsBefore);
  rehearsed.started = Behind(actions_->Started(), startedBefore);
  rehearsed.messages = communications_->Kept();
  rehearsed.changes = Compare(before, ReadAgentState(copy_.Path()));
  const std::lock_guard<std::mutex> lock(logMutex_);
  rehearsed.logged = Behind(logged_, loggedBefore);
  return rehearsed;
}

std::string RehearsalHost::InOriginal(const std::string& text) const {
  const fs::path& copy = copy_.Path();
  // By its last part where that does, which looks the same in any notation.
  const bool isInside = fs::exists(original_);
  return isInside ? boost::erase_all_copy(text, "/" + copy.filename().string())
                  : boost::replace_all_copy(text, copy.string(), original_.string());
}

}  // namespace Norvik::Host
