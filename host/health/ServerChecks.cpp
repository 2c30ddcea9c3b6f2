#include <netdb.h>
#include <sys/socket.h>

#include <memory>

#include "common/text/Text.h"
#include "host/data/DataFolder.h"
#include "host/health/Checks.h"
#include "host/server/ServerOptions.h"

namespace Norvik::Host {

namespace {

using Stage = ConnectionFacts::Stage;
using std::chrono::duration_cast;

constexpr long FEW_DAYS = 14;
constexpr std::chrono::seconds NOTED_SKEW(60);
constexpr std::chrono::seconds GRAVE_SKEW(3600);

/// The finding of a check that needs the server, without a server, or if the request failed before.
boost::optional<Finding> NotReached(const Examined& examined, Stage wanted) {
  const ServerAnswer& server = examined.Server();
  if (!server.origin)
    return Finding{Outcome::UNKNOWN, "the configuration cannot be used",
                   "see the check configuration"};
  if (server.origin->empty()) return Finding{Outcome::OK, "not needed: no server is configured"};
  const ConnectionFacts& facts = server.answer.facts;
  if (facts.reached >= wanted) return boost::none;
  if (facts.reached + 1 < wanted) {
    return Finding{Outcome::UNKNOWN, "not tried, since an earlier step failed",
                   "see the earlier checks of the server"};
  }
  const std::string why = Common::OnOneLine(server.answer.failure);
  return Finding{facts.outOfTime ? Outcome::UNKNOWN : Outcome::ERROR, *server.origin + ": " + why};
}

Finding FindName(const std::string& name) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int code = ::getaddrinfo(name.c_str(), nullptr, &hints, &found);
  const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owned(found, [](addrinfo* list) {
    if (list) ::freeaddrinfo(list);
  });
  if (code == 0) {
    char address[NI_MAXHOST] = {};
    ::getnameinfo(found->ai_addr, found->ai_addrlen, address, sizeof(address), nullptr, 0,
                  NI_NUMERICHOST);
    return {Outcome::OK, name + " is " + address};
  }
  // No answer of a name server says nothing about the name.
  const bool isKnown = code == EAI_NONAME;
  return {isKnown ? Outcome::ERROR : Outcome::UNKNOWN, name + ": " + ::gai_strerror(code)};
}

}  // namespace

Finding FindServerName(const Examined& examined) {
  const auto& configuration = examined.Configuration().value;
  if (!configuration)
    return {Outcome::UNKNOWN, "the configuration cannot be used", "see the check configuration"};
  std::string name = configuration->values.communications.address;
  if (name.empty())
    return {Outcome::INFORMATION, "no server is configured",
            "set server.address in the configuration, if documents are to be sent"};
  if (name.size() > 1 && name.front() == '[') name = name.substr(1, name.size() - 2);
  return FindName(name);
}

Finding FindServerConnection(const Examined& examined) {
  if (auto finding = NotReached(examined, Stage::CONNECTED)) return *finding;
  return {Outcome::OK, *examined.Server().origin + " accepts connections"};
}

Finding FindServerTrust(const Examined& examined) {
  if (auto finding = NotReached(examined, Stage::TRUSTED)) return *finding;
  return {Outcome::OK, "the certificate is trusted and belongs to the address"};
}

Finding FindCertificateDays(const Examined& examined) {
  if (auto finding = NotReached(examined, Stage::TRUSTED)) {
    // The one failure belongs to the check before.
    if (finding->outcome == Outcome::ERROR) finding->outcome = Outcome::UNKNOWN;
    return *finding;
  }
  const auto& expires = examined.Server().answer.facts.expires;
  if (!expires)
    return {Outcome::UNKNOWN, "the TLS library does not show the certificate",
            "look at the certificate by other means"};
  const auto left = duration_cast<std::chrono::hours>(*expires - examined.Options().now).count();
  const std::string text =
      std::to_string(left / 24) + " days are left, until " + TimeText(*expires);
  return {left < 24 * FEW_DAYS ? Outcome::WARNING : Outcome::OK, text};
}

Finding FindServerAnswer(const Examined& examined) {
  if (auto finding = NotReached(examined, Stage::ANSWERED)) return *finding;
  const ServerAnswer& server = examined.Server();
  const long status = server.answer.status;
  const std::string text = *server.origin + " " + server.answer.Text();
  if (status == 0 || status >= 500) return {Outcome::ERROR, text};
  if (status >= 300 && status < 400) {
    return {Outcome::ERROR, text + ", but the agent follows no redirection"};
  }
  if (server.sentToken && (status == 404 || status == 405)) {
    return {Outcome::WARNING, text + ", as no management server does"};
  }
  return {Outcome::OK, text};
}

Finding FindEnrolment(const Examined& examined) {
  const auto& identity = examined.StoredIdentity();
  if (identity.isHidden) return UnreadableFinding(examined.File(IDENTITY_FILE).string());
  if (!identity.problem.empty()) return {Outcome::ERROR, identity.problem};
  const ServerAnswer& server = examined.Server();
  if (!server.origin)
    return {Outcome::UNKNOWN, "the configuration cannot be used", "see the check configuration"};
  if (server.origin->empty()) return {Outcome::OK, "not needed: no server is configured"};
  if (!identity.value) return {Outcome::INFORMATION, "the agent has no identity yet", START_AGENT};
  const std::string& enrolled = identity.value->server;
  if (enrolled.empty()) return {Outcome::WARNING, "no server has enrolled this agent yet"};
  if (!server.sentToken) {
    return {Outcome::WARNING,
            "enrolled at " + enrolled + ", but " + *server.origin + " is configured"};
  }
  if (auto finding = NotReached(examined, Stage::ANSWERED)) {
    finding->outcome = Outcome::UNKNOWN;
    return *finding;
  }
  const long status = server.answer.status;
  if (status == 401 || status == 403) {
    return {Outcome::ERROR, *server.origin + " does not accept the identifier or the token: it " +
                                server.answer.Text()};
  }
  if (!server.answer.IsSuccess()) {
    return {Outcome::UNKNOWN,
            *server.origin + " has enrolled this agent, but now it " + server.answer.Text()};
  }
  return {Outcome::OK, *server.origin + " accepts the token of " + identity.value->identifier};
}

Finding FindClockSkew(const Examined& examined) {
  if (auto finding = NotReached(examined, Stage::ANSWERED)) {
    if (finding->outcome == Outcome::ERROR) finding->outcome = Outcome::UNKNOWN;
    return *finding;
  }
  const ServerAnswer& server = examined.Server();
  if (!server.answer.facts.date) {
    return {Outcome::UNKNOWN, "the server's answer has no date"};
  }
  const auto skew = duration_cast<std::chrono::seconds>(server.at - *server.answer.facts.date);
  const auto size = skew < skew.zero() ? -skew : skew;
  const std::string text = "the clock is " + PeriodText(size) +
                           (skew < skew.zero() ? " earlier" : " later") + " than the server's";
  if (size > GRAVE_SKEW) return {Outcome::ERROR, text};
  return {size > NOTED_SKEW ? Outcome::WARNING : Outcome::OK, text};
}

}  // namespace Norvik::Host
