#include "host/server/ServerSession.h"

#include <algorithm>
#include <boost/format.hpp>
#include <boost/property_tree/ptree.hpp>
#include <exception>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "common/identification/HostInfoProvider.h"
#include "common/log/Logger.h"
#include "host/server/AnswerBody.h"
#include "host/server/Attempt.h"

namespace Norvik::Host {

namespace {

using Common::GetAgentVersion;

constexpr char AGENTS[] = "/norvik/v1/agents/";
constexpr long UNAUTHORIZED = 401;
constexpr long NOT_YET = 202;
constexpr char ENROLMENT[] = "enrolment";
constexpr std::size_t SHORTEST_TOKEN = 16;
constexpr std::size_t LONGEST_TOKEN = 512;

/// A token is sent in a header without encoding.
bool IsToken(const std::string& text) {
  const auto isVisible = [](char c) { return c > 0x20 && c < 0x7F; };
  return text.size() >= SHORTEST_TOKEN && text.size() <= LONGEST_TOKEN &&
         std::all_of(text.begin(), text.end(), isVisible);
}

std::string EnrolmentBody(const ServerOptions& options) {
  nlohmann::ordered_json body = {{"agentVersion", GetAgentVersion()},
                                 {"hostName", Common::HostInfoProvider::GetHostName()}};
  const std::pair<const char*, const std::string&> rest[] = {
      {"serialNumber", options.hardware.serialNumber},
      {"model", options.hardware.model},
      {"platformUuid", options.hardware.platformUuid},
      {"secret", options.enrolmentSecret}};
  for (const auto& [key, text] : rest) {
    if (!text.empty()) body[key] = text;
  }
  return body.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

HttpRequest JsonRequest(const char* method, std::string body) {
  HttpRequest request;
  request.method = method;
  request.headers = {"Content-Type: application/json"};
  request.body = std::move(body);
  return request;
}

}  // namespace

ServerSession::ServerSession(const ServerOptions& options, const std::atomic<bool>& stopped)
    : options_(options), stopped_(stopped) {}

std::unique_ptr<HttpClient> ServerSession::NewClient() const {
  return std::make_unique<HttpClient>(options_, stopped_);
}

HttpAnswer ServerSession::Send(HttpClient& client, const std::string& resource,
                               HttpRequest request) {
  const Identity identity = options_.identity->Get();
  request.path = AGENTS + identity.identifier + (resource.empty() ? "" : "/" + resource);
  request.headers.push_back("Authorization: Bearer " + identity.token);
  request.headers.push_back("Accept: application/json");
  request.headers.push_back("User-Agent: norvik-agent/" + GetAgentVersion());
  HttpAnswer answer = client.Send(request);
  if (answer.status == UNAUTHORIZED) options_.identity->Revoke();
  return answer;
}

HttpAnswer ServerSession::Post(HttpClient& client, const std::string& resource,
                               const std::string& body) {
  return Send(client, resource, JsonRequest("POST", body));
}

void ServerSession::FinishEnrolment(const HttpAnswer& answer, const Identity& identity) {
  if (answer.status == NOT_YET) throw std::runtime_error("it has not decided yet");
  if (!answer.IsSuccess()) throw std::runtime_error("it " + answer.Text());
  const auto body = ParseAnswerBody(answer.body);
  // The login page of a captive portal may answer 200, too.
  if (body.get("identifier", "") != identity.identifier) {
    throw std::runtime_error("its answer does not name the agent");
  }
  const std::string token = body.get("token", identity.token);
  if (!IsToken(token)) throw std::runtime_error("the token in its answer is invalid");
  options_.identity->Acknowledge(Origin(), token);
  NORVIK_INFORMATION(boost::format("The server %1% has enrolled this agent") % Origin());
}

bool ServerSession::Enrol(HttpClient& client, boost::optional<std::chrono::seconds>& retryAfter) {
  const std::lock_guard<std::mutex> lock(enrolMutex_);
  const Identity identity = options_.identity->Get();
  if (identity.server == Origin()) return true;
  const HttpAnswer answer = Send(client, "", JsonRequest("PUT", EnrolmentBody(options_)));
  retryAfter = answer.retryAfter;
  try {
    FinishEnrolment(answer, identity);
    options_.contact->Record(ENROLMENT, {});
    return true;
  } catch (const std::exception& error) {
    if (!stopped_) {
      const auto result = answer.status == UNAUTHORIZED
                              ? Attempt::Result::Refused
                              : AttemptOf(answer, [](const auto&) { return false; }).result;
      options_.contact->Record(ENROLMENT, {result, error.what(), boost::none});
      NORVIK_WARNING(boost::format("The server %1% has not enrolled this agent: %2%") % Origin() %
                     error.what());
    }
  }
  return false;
}

}  // namespace Norvik::Host
