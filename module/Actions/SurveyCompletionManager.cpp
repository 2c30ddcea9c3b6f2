#include "module/Actions/SurveyCompletionManager.h"

#include <boost/format.hpp>
#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <stdexcept>

#include "common/action/ActionCodes.h"
#include "common/log/Logger.h"
#include "common/text/OperatingSystemType.h"
#include "common/text/Text.h"
#include "json/Nesting.h"
#include "module/Actions/OtherProcesses.h"

namespace Norvik::KOB {

namespace {

using boost::property_tree::ptree;
using Code = SurveyResultCodes;

constexpr int NO_TYPE_YET = -1;
constexpr std::uint32_t SURVEY_REQUEST = 1003;
constexpr std::uint32_t SURVEY_SUBCODE = 1;
constexpr char URL_PARAMETER[] = "Url";

/// No valid answer about a survey nests deeper. The limit keeps a hostile one from exhausting the
/// stack.
constexpr std::size_t MAX_NESTING = 100;

ptree ReadAnswer(const std::string& text) {
  if (json::NestsDeeperThan(text, MAX_NESTING)) {
    throw std::runtime_error("the answer nests too deep");
  }
  std::istringstream stream(text);
  ptree tree;
  boost::property_tree::read_json(stream, tree);
  return tree;
}

/// The result of the step. If it throws, logs the message with the reason and returns nothing.
template <class Step>
auto ResultOrNone(const char* text, const std::string& message, Step step)
    -> boost::optional<decltype(step())> {
  try {
    return step();
  } catch (const std::exception& error) {
    NORVIK_WARNING(boost::format(text) % message % error.what());
    return boost::none;
  }
}

/// The message in the server's answer. Without an answer, logs a warning and returns nothing.
boost::optional<std::string> RequestSurvey(Common::ICommunicationSystem& server,
                                           const std::string& agentId) {
  Common::ProcessMessageRequest request;
  request.agentIdentifier = agentId;
  request.code = SURVEY_REQUEST;
  request.subcode = SURVEY_SUBCODE;
  // Starts as a failure: without an answer, nothing is filled in.
  Common::ProcessMessageResponse response;
  response.result = 1;
  response.message = "the server did not answer";
  const bool answered = server.ProcessMessage(request, response);
  const std::string message = Common::ToUtf8(response.message);
  if (answered && response.result == 0) return message;
  NORVIK_WARNING(boost::format("Unable to get Survey info with Request. Result: %1% message: %2%") %
                 std::to_string(static_cast<std::int32_t>(response.result)) % message);
  return boost::none;
}

}  // namespace

boost::optional<Common::SurveyInfo> SurveyCompletionManager::CheckAgentProfile(
    const std::weak_ptr<Common::ModuleDependencies>& dependencies, SurveyResultCodes& code) {
  const auto locked = dependencies.lock();
  code = locked ? Code::NoFailure : Code::DependencyExpired;
  return locked ? locked->configuration.survey : boost::none;
}

bool SurveyCompletionManager::CheckOSType(IOSTypeSeeker& seeker, Common::SurveyInfo& survey,
                                          SurveyResultCodes& code) {
  const int type = seeker.GetOSType();
  code = type == NO_TYPE_YET ? Code::OSTypeNotReady : Code::NoFailure;
  switch (type) {
    case Common::OperatingSystemType::MACOS:
      return survey.onMacOs;
    case Common::OperatingSystemType::WINDOWS:
      return survey.onWindows;
    case Common::OperatingSystemType::LINUX:
      return survey.onLinux;
    default:
      return false;
  }
}

boost::optional<std::string> SurveyCompletionManager::AskSurveyCompleted(
    const std::string& agentId, const std::weak_ptr<Common::ICommunicationSystem>& communications,
    SurveyResultCodes& code) {
  const auto server = communications.lock();
  code = Code::DependencyExpired;
  if (!server) return boost::none;

  code = Code::CommunicationFailure;
  const auto message = RequestSurvey(*server, agentId);
  if (!message) return boost::none;
  const auto tree = ResultOrNone("Unable to convert response to Json. Message: %1%. Error: %2%",
                                 *message, [&] { return ReadAnswer(*message); });
  if (!tree) return boost::none;
  const auto survey =
      ResultOrNone("Unable to convert response to SurveyResponseInfo. Message: %1%. Error: %2%",
                   *message, [&] { return Common::SurveyResponseInfo(*tree); });
  if (!survey) return boost::none;

  // An empty tree becomes a survey that is not available.
  code = Code::NoFailure;
  if (!survey->available) return boost::none;
  return survey->url;
}

bool SurveyCompletionManager::SendSurveyDialogMessage(
    const std::string& url, unsigned long long session,
    const std::weak_ptr<Common::ICommunicationSystem>& communications, SurveyResultCodes& code) {
  const auto processes = OtherProcesses(communications);
  code = Code::DependencyExpired;
  if (!processes) return false;
  const Common::IPCMessage message{0, Common::COMMON_ACTION_SURVEY_DIALOG, URL_PARAMETER, url};
  const bool sent = processes->Send(message, session);
  code = sent ? Code::NoFailure : Code::CommunicationFailure;
  return sent;
}

}  // namespace Norvik::KOB
