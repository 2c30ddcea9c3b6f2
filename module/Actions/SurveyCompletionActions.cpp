#include "module/Actions/SurveyCompletionActions.h"

#include <boost/format.hpp>
#include <chrono>
#include <utility>

#include "common/log/Logger.h"
#include "module/ActionCodes.h"
#include "module/Actions/OSTypeDBSeeker.h"
#include "module/Actions/SurveyCompletionManager.h"

namespace Norvik::KOB {

namespace {

using Code = SurveyResultCodes;
using Manager = SurveyCompletionManager;

constexpr char SESSION_PARAMETER[] = "SessionEventData";
constexpr char COMMUNICATIONS_EXPIRED[] = "Communication system expired";
constexpr std::chrono::minutes RETRY_DELAY{2};

}  // namespace

SurveyCompletionActions::SurveyCompletionActions(
    std::weak_ptr<Common::ModuleDependencies> dependencies, const Common::ActionFactory& factory,
    Common::HandlerMap& handlers)
    : ActionPerformerBase(Common::PRODUCT_KOB, factory, dependencies),
      dependencies_(std::move(dependencies)) {
  CreateActionRunner(handlers, ACTION_VALIDATE_SURVEY_COMPLETION,
                     &SurveyCompletionActions::OnValidateCompletionSurvey, this);
}

Common::ActionResponse SurveyCompletionActions::OnValidateCompletionSurvey(
    Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  if (parameters.Exist(SESSION_PARAMETER)) {
    CheckAgentProfile(parameters);
  } else {
    NORVIK_ERROR("User Session ID is not given on parameters");
  }
  return {};
}

void SurveyCompletionActions::CheckAgentProfile(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  Code code{};
  if (auto survey = Manager::CheckAgentProfile(dependencies_, code)) {
    CheckOSType(parameters, *survey);
  } else if (code == Code::NoFailure) {
    NORVIK_INFORMATION("Survey is not enabled on profile");
  } else {
    NORVIK_ERROR("Module dependencies expired");
  }
}

void SurveyCompletionActions::CheckOSType(Common::ActionParameters& parameters,
                                          Common::SurveyInfo& survey) {
  NORVIK_SCOPE();
  Code code{};
  OSTypeDBSeeker seeker;
  if (Manager::CheckOSType(seeker, survey, code)) {
    AskSurveyCompleted(parameters);
  } else if (code == Code::NoFailure) {
    NORVIK_INFORMATION("Survey completion will not be displayed. OS type is not enabled.");
  } else {
    ScheduleRetrySurvey(parameters, osTypeAttempts_, "Operation System Type is not ready", "");
  }
}

void SurveyCompletionActions::AskSurveyCompleted(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  const auto agent = identification.lock();
  if (!agent) return;
  Code code{};
  if (const auto url =
          Manager::AskSurveyCompleted(agent->GetAgentIdentifier(), communications, code)) {
    SendSurveyMessage(parameters, *url);
  } else if (code == Code::NoFailure) {
    NORVIK_INFORMATION("Survey has been filled out");
  } else if (code == Code::DependencyExpired) {
    NORVIK_ERROR(COMMUNICATIONS_EXPIRED);
  } else {
    ScheduleRetrySurvey(parameters, serverAttempts_, "Communication error", "");
  }
}

void SurveyCompletionActions::SendSurveyMessage(Common::ActionParameters& parameters,
                                                const std::string& url) {
  NORVIK_SCOPE();
  const auto session = parameters.Get<unsigned long long>(SESSION_PARAMETER);
  Code code{};
  if (Manager::SendSurveyDialogMessage(url, session, communications, code)) {
    osTypeAttempts_ = serverAttempts_ = ipcAttempts_ = 0;
    NORVIK_INFORMATION(boost::format("Sending IPC action to display Survey Dialog with URL: %1%") %
                       url);
  } else if (code == Code::DependencyExpired) {
    NORVIK_ERROR(COMMUNICATIONS_EXPIRED);
  } else {
    ScheduleRetrySurvey(parameters, ipcAttempts_, "Unable to send IPC message", "");
  }
}

void SurveyCompletionActions::ScheduleRetrySurvey(Common::ActionParameters& parameters,
                                                  unsigned char& attempts,
                                                  const std::string& reason,
                                                  const std::string& detail) {
  NORVIK_SCOPE();
  if (attempts >= MAX_WAIT_ATTEMPTS) {
    // Deliberately not reset: later sessions of this process give up at once for the same cause.
    NORVIK_ERROR(boost::format("%1%. Max attempts reached") % reason);
    return;
  }
  NORVIK_INFORMATION(boost::format("%1%. %2%.Re scheduling Survey completion") % reason % detail);
  RunOneShotAction(ACTION_VALIDATE_SURVEY_COMPLETION, RETRY_DELAY, &parameters);
  ++attempts;
}

}  // namespace Norvik::KOB
