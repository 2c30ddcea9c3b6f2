#pragma once

#include <boost/optional/optional_io.hpp>
#include <memory>
#include <string>

#include "common/action/IModule.h"
#include "module/ActionCodes.h"
#include "module/KOBModule.h"
#include "support/FakeHost.h"

namespace Norvik::Tests {

/// A module, created as a host creates it.
class ModuleUnderTest {
 public:
  explicit ModuleUnderTest(FakeHost& host) : module_(::GetAgentModuleObject(host.Dependencies())) {}

  Common::IModule* operator->() { return module_.get(); }

  Common::ActionResponse Run(unsigned int code, const Common::ActionParameters& parameters = {}) {
    Common::ModuleAction action = module_->GetAction(code, parameters);
    return action.handler(action.parameters);
  }
  /// Name of the action of a code; empty if the module does not serve the code.
  std::string NameOf(unsigned int code) { return module_->GetAction(code, {}).name; }

 private:
  std::unique_ptr<Common::IModule> module_;
};

inline Common::ActionParameters WithText(const std::string& name, const wxString& text) {
  Common::ActionParameters parameters;
  parameters.Set(name, text);
  return parameters;
}

inline Common::ActionParameters WithConfiguration(
    const Common::AgentConfigurationInfo& configuration) {
  Common::ActionParameters parameters;
  parameters.Set(Common::COMMON_PARAMETER_CONFIGURATION, configuration);
  return parameters;
}

}  // namespace Norvik::Tests
