#include "cli/rehearsal/RehearsalHost.h"

#include <boost/algorithm/string/erase.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/filesystem/operations.hpp>
#include <exception>
#include <utility>

#include "common/files/Paths.h"
#include "host/assembly/StandardChannels.h"

namespace Norvik::Cli {

namespace {

using namespace Common;
using namespace Host;
namespace fs = boost::filesystem;

/// The items after the first `count`.
template <class Item>
std::vector<Item> After(const std::vector<Item>& items, std::size_t count) {
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
  AgentParts parts;
  parts.userProcess = options.userProcess;
  parts.dataBase = std::make_shared<AgentDatabase>(copy_.Path());
  parts.identity = std::make_shared<const AgentIdentity>(copy_.Path() / IDENTITY_FILE);
  parts.configuration =
      ForModule(UseConfiguration(options, copy_.Path()), parts.identity->Get().identifier);
  parts.communications = communications_ = std::make_shared<RehearsedCommunications>(sessions);
  parts.actions = actions_ =
      std::make_shared<RehearsedActions>(AgentData(parts.dataBase, AGENT_DATA_TABLE));
  assembled_ = AssembleModule(options.moduleFile, std::move(parts));
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
    ModuleAction action = Module().GetAction(code, parameters);
    rehearsed.response = action.handler(action.parameters);
    for (auto& rest : actions_->TakeContinuations()) rest.handler(rest.parameters);
  } catch (const std::exception& error) {
    rehearsed.failure = *error.what() ? error.what() : "the action threw an exception";
  }
  rehearsed.steps = After(rehearsal_.Steps(), stepsBefore);
  rehearsed.started = After(actions_->Started(), startedBefore);
  rehearsed.messages = communications_->Kept();
  rehearsed.changes = Compare(before, ReadAgentState(copy_.Path()));
  const std::lock_guard<std::mutex> lock(logMutex_);
  rehearsed.logged = After(logged_, loggedBefore);
  return rehearsed;
}

std::string RehearsalHost::InOriginal(const std::string& text) const {
  const fs::path& copy = copy_.Path();
  // A copy inside the data folder is found by its name, however the path to it is written.
  const bool isInside = fs::exists(original_);
  return isInside ? boost::erase_all_copy(text, "/" + copy.filename().string())
                  : boost::replace_all_copy(text, copy.string(), original_.string());
}

}  // namespace Norvik::Cli
