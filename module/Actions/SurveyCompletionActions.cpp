#include "module/Actions/SurveyCompletionActions.h"

#include <utility>

#include "common/log/Logger.h"
#include "module/ActionCodes.h"

namespace Norvik::KOB {

SurveyCompletionActions::SurveyCompletionActions(
    std::weak_ptr<Common::ModuleDependencies> dependencies, const Common::ActionFactory& factory,
    Common::HandlerMap& handlers)
    : ActionPerformerBase(Common::PRODUCT_KOB, factory, std::move(dependencies)) {
  CreateActionRunner(handlers, ACTION_VALIDATE_SURVEY_COMPLETION,
                     &SurveyCompletionActions::OnValidateCompletionSurvey, this);
}

Common::ActionResponse SurveyCompletionActions::OnValidateCompletionSurvey(
    Common::ActionParameters&) {
  NORVIK_WARNING("The survey is not part of this build");
  return {};
}

}  // namespace Norvik::KOB
