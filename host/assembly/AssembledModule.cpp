#include "host/assembly/AssembledModule.h"

#include <utility>

#include "host/assembly/ModuleLoader.h"
#include "host/identity/MachineFacts.h"

namespace Norvik::Host {

using namespace Common;

std::unique_ptr<AssembledModule> AssembleModule(const boost::filesystem::path& file,
                                                AgentParts parts) {
  auto assembled = std::make_unique<AssembledModule>();
  assembled->parts = std::move(parts);
  const auto facts = std::make_shared<MachineFacts>(assembled->parts.identity);
  assembled->identification = facts;

  assembled->dependencies = std::make_shared<ModuleDependencies>();
  ModuleDependencies& dependencies = *assembled->dependencies;
  dependencies.configuration = assembled->parts.configuration;
  dependencies.identification = assembled->identification;
  dependencies.processKind = assembled->parts.userProcess ? 1 : 0;
  dependencies.actionSystem = assembled->parts.actions;
  dependencies.communications = assembled->parts.communications;
  dependencies.dataBase = assembled->parts.dataBase;

  assembled->module = LoadModule(file, assembled->dependencies);
  facts->ModuleIsMade();
  assembled->parts.actions->SetActionFactory(
      [&module = *assembled->module](unsigned int code, const ActionParameters& parameters) {
        return module.GetAction(code, parameters);
      });
  return assembled;
}

}  // namespace Norvik::Host
