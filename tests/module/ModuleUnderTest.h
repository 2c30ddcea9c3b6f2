#pragma once

#include <boost/optional/optional_io.hpp>

#include "common/action/IModule.h"
#include "module/ActionCodes.h"
#include "module/KOBModule.h"
#include "support/FakeHost.h"
#include "support/Test.h"

namespace Norvik::Tests {

class ModuleUnderTest {
 public:
  explicit ModuleUnderTest(FakeHost& host) : module_(::GetAgentModuleObject(host.Dependencies())) {}

  Common::IModule* operator->() { return module_.get(); }

  Common::ActionResponse Run(unsigned int code, const Common::ActionParameters& parameters = {}) {
    Common::ModuleAction action = module_->GetAction(code, parameters);
    return action.handler(action.parameters);
  }
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
