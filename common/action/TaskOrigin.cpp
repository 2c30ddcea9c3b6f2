#include "common/action/TaskOrigin.h"

#include <chrono>

#include "common/text/Text.h"

namespace Norvik::Common {

namespace {

/// A parameter as text, whatever type its sender chose. Empty for a type without a plain text.
struct ParameterText : boost::static_visitor<std::string> {
  std::string operator()(const std::string& text) const { return text; }
  std::string operator()(const wxString& text) const { return ToUtf8(text); }
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(const ActionTimePoint& time) const {
    using std::chrono::duration_cast, std::chrono::seconds;
    return std::to_string(duration_cast<seconds>(time.time_since_epoch()).count());
  }
  std::string operator()(const AgentConfigurationInfo&) const { return {}; }
  template <class Number>
  std::string operator()(Number number) const {
    return std::to_string(number);
  }
};

std::string TextOf(const ActionParameters& parameters, const char* name) {
  const auto found = parameters.Values().find(name);
  if (found == parameters.Values().end()) return {};
  return boost::apply_visitor(ParameterText(), found->second);
}

}  // namespace

TaskResponseInfo StatusOfTask(const ActionParameters& parameters,
                              TaskResponseInfo::ResponseStatusTypes status,
                              const std::string& message) {
  TaskResponseInfo response;
  response.status = status;
  response.message = message;
  response.taskName = TextOf(parameters, COMMON_PARAMETER_TASK_NAME);
  response.taskCreationDate = TextOf(parameters, COMMON_PARAMETER_TASK_CREATION_DATE);
  response.taskTimeStamp = TextOf(parameters, COMMON_PARAMETER_TASK_TIME_STAMP);
  response.requestId = TextOf(parameters, COMMON_PARAMETER_REQUEST_ID);
  return response;
}

}  // namespace Norvik::Common
