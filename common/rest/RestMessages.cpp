#include "common/rest/RestMessages.h"

#include <boost/property_tree/ptree.hpp>
#include <tuple>

#include "common/text/Text.h"

namespace Norvik::Common {

namespace {

constexpr char AGENT_IDENTIFIER[] = "agentIdentifier";
constexpr char CODE[] = "code";
constexpr char SUBCODE[] = "subcode";
constexpr char MESSAGE[] = "message";
constexpr char RESULT[] = "result";
constexpr char AVAILABLE[] = "available";
constexpr char URL[] = "url";

/// The value of a key, or the default if the key is missing. Throws for a value of another type: an
/// answer that cannot be understood must not count as one without content.
template <class T>
T ValueOf(const boost::property_tree::ptree& body, const char* key, const T& missing) {
  return body.get_child_optional(key) ? body.get<T>(key) : missing;
}

auto AsTuple(const SurveyResponseInfo& info) { return std::tie(info.available, info.url); }

}  // namespace

ProcessMessageRequest::operator json::JSON() const {
  json::JSON body;
  if (agentIdentifier) body[AGENT_IDENTIFIER] = *agentIdentifier;
  body[CODE] = code;
  body[SUBCODE] = subcode;
  body[MESSAGE] = ToUtf8(message);
  return body;
}

void ProcessMessageResponse::Assign(const boost::property_tree::ptree& body) {
  const auto newResult = ValueOf<std::uint32_t>(body, RESULT, 0);
  message = WxStringFromStdString(ValueOf<std::string>(body, MESSAGE, {}));
  result = newResult;
}

SurveyResponseInfo::SurveyResponseInfo(const boost::property_tree::ptree& body) {
  SurveyResponseInfo::Assign(body);
}

void SurveyResponseInfo::Assign(const boost::property_tree::ptree& body) {
  const bool newAvailable = ValueOf<bool>(body, AVAILABLE, false);
  url = ValueOf<std::string>(body, URL, {});
  available = newAvailable;
}

SurveyResponseInfo::operator json::JSON() const {
  json::JSON body;
  body[AVAILABLE] = available;
  body[URL] = url;
  return body;
}

bool operator==(const SurveyResponseInfo& left, const SurveyResponseInfo& right) {
  return AsTuple(left) == AsTuple(right);
}

bool operator!=(const SurveyResponseInfo& left, const SurveyResponseInfo& right) {
  return !(left == right);
}

}  // namespace Norvik::Common
