#pragma once

#include <memory>

#include "common/action/ActionPerformerBase.h"

namespace Norvik::KOB {

/// Offers a user the completion survey when a session begins.
class SurveyCompletionActions final : public Common::ActionPerformerBase {
 public:
  SurveyCompletionActions(std::weak_ptr<Common::ModuleDependencies> dependencies,
                          const Common::ActionFactory& factory, Common::HandlerMap& handlers);

 private:
  Common::ActionResponse OnValidateCompletionSurvey(Common::ActionParameters& parameters);
};

}  // namespace Norvik::KOB
