#pragma once

#include <boost/optional.hpp>
#include <memory>
#include <string>

#include "common/action/ModuleDependencies.h"
#include "module/Actions/OSTypeDBSeeker.h"

namespace Norvik::KOB {

/// How a decision about the survey came about.
enum class SurveyResultCodes : int {
  NoFailure = 0,             ///< without a result: there is nothing more to do
  DependencyExpired = 1,     ///< what would have to be asked has gone
  OSTypeNotReady = 2,        ///< the agent has not recorded its operating-system type yet
  CommunicationFailure = 3,  ///< the server or the user's process could not be reached
};

/// The decisions on the way to the survey. Each tells in `code` how it came about, whatever stood
/// there before.
class SurveyCompletionManager {
 public:
  /// The survey of the agent's profile; nothing if the profile has none.
  static boost::optional<Common::SurveyInfo> CheckAgentProfile(
      const std::weak_ptr<Common::ModuleDependencies>& dependencies, SurveyResultCodes& code);

  /// Whether the survey is for this type of operating system. Raises what the seeker raises.
  static bool CheckOSType(IOSTypeSeeker& seeker, Common::SurveyInfo& survey,
                          SurveyResultCodes& code);

  /// Asks the server, and waits for it, whether it has a survey for this device. The URL if so. The
  /// log tells of an answer that cannot be used.
  static boost::optional<std::string> AskSurveyCompleted(
      const std::string& agentId, const std::weak_ptr<Common::ICommunicationSystem>& communications,
      SurveyResultCodes& code);

  /// Has the user's process of the session show the survey. False if it did not get the message.
  static bool SendSurveyDialogMessage(
      const std::string& url, unsigned long long session,
      const std::weak_ptr<Common::ICommunicationSystem>& communications, SurveyResultCodes& code);
};

}  // namespace Norvik::KOB
