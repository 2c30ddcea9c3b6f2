#pragma once

#include <boost/optional.hpp>
#include <memory>
#include <string>

#include "common/action/ModuleDependencies.h"
#include "module/Actions/OSTypeDBSeeker.h"

namespace Norvik::KOB {

/// The reason for the result of a decision about the survey.
enum class SurveyResultCodes : int {
  NoFailure = 0,             ///< with an empty result: there is nothing more to do
  DependencyExpired = 1,     ///< a service of the host no longer exists
  OSTypeNotReady = 2,        ///< the agent has not recorded its operating-system type yet
  CommunicationFailure = 3,  ///< the server or the user's process could not be reached
};

/// The decisions that lead to the survey. Each sets `code` in any case.
class SurveyCompletionManager {
 public:
  /// The survey of the agent's profile; empty if the profile has none.
  static boost::optional<Common::SurveyInfo> CheckAgentProfile(
      const std::weak_ptr<Common::ModuleDependencies>& dependencies, SurveyResultCodes& code);

  /// Whether the survey is for this type of operating system. Throws what the seeker throws.
  static bool CheckOSType(IOSTypeSeeker& seeker, Common::SurveyInfo& survey,
                          SurveyResultCodes& code);

  /// Asks the server whether it has a survey for this device, and waits for the answer. Returns the
  /// survey's URL; empty without a survey. An answer that cannot be used is logged.
  static boost::optional<std::string> AskSurveyCompleted(
      const std::string& agentId, const std::weak_ptr<Common::ICommunicationSystem>& communications,
      SurveyResultCodes& code);

  /// Sends the survey to the user's process of the session, which shows it. False if the message
  /// could not be delivered.
  static bool SendSurveyDialogMessage(
      const std::string& url, unsigned long long session,
      const std::weak_ptr<Common::ICommunicationSystem>& communications, SurveyResultCodes& code);
};

}  // namespace Norvik::KOB
