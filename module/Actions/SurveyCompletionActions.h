#pragma once

#include <memory>
#include <string>

#include "common/action/ActionPerformerBase.h"
#include "common/configuration/AgentConfigurationInfo.h"

namespace Norvik::KOB {

/// Offers a user the completion survey when a session begins. If a step fails temporarily, the
/// whole flow starts again two minutes later, at most ten times per cause. Showing a survey resets
/// the counts.
class SurveyCompletionActions final : public Common::ActionPerformerBase {
 public:
  static constexpr unsigned char MAX_WAIT_ATTEMPTS = 10;

  SurveyCompletionActions(std::weak_ptr<Common::ModuleDependencies> dependencies,
                          const Common::ActionFactory& factory, Common::HandlerMap& handlers);

 private:
  /// Throws `boost::bad_get`, before the last step, if the session is not an unsigned 64-bit
  /// number.
  Common::ActionResponse OnValidateCompletionSurvey(Common::ActionParameters& parameters);

  // The steps of the flow. Each leads to the next, to a retry or to its end.
  void CheckAgentProfile(Common::ActionParameters& parameters);
  void CheckOSType(Common::ActionParameters& parameters, Common::SurveyInfo& survey);
  void AskSurveyCompleted(Common::ActionParameters& parameters);
  void SendSurveyMessage(Common::ActionParameters& parameters, const std::string& url);

  void ScheduleRetrySurvey(Common::ActionParameters& parameters, unsigned char& attempts,
                           const std::string& reason, const std::string& detail);

  const std::weak_ptr<Common::ModuleDependencies> dependencies_;
  unsigned char osTypeAttempts_ = 0;
  unsigned char serverAttempts_ = 0;
  unsigned char ipcAttempts_ = 0;
};

}  // namespace Norvik::KOB
