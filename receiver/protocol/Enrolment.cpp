#include <algorithm>

#include "receiver/protocol/Credentials.h"
#include "receiver/protocol/Protocol.h"

namespace Norvik::Receiver {

namespace {

constexpr std::size_t MAX_FACT = 256;
/// Anyone may ask for enrolment: so many may wait for a person.
constexpr long long MAX_WAITING = 10000;
/// The time of the last contact is as exact as this, in seconds.
constexpr long long CONTACT_STEP = 30;

/// What an agent says of itself.
struct Facts {
  explicit Facts(const Json& body)
      : hostName(Receiver::TextOf(body, "hostName", MAX_FACT)),
        serialNumber(Receiver::TextOf(body, "serialNumber", MAX_FACT)),
        model(Receiver::TextOf(body, "model", MAX_FACT)),
        platformUuid(Receiver::TextOf(body, "platformUuid", MAX_FACT)),
        version(Receiver::TextOf(body, "agentVersion", MAX_FACT)),
        secret(Receiver::TextOf(body, "secret", 4096)) {}

  std::string Text() const {
    return Json{{"hostName", hostName},
                {"serialNumber", serialNumber},
                {"model", model},
                {"platformUuid", platformUuid},
                {"agentVersion", version}}
        .dump();
  }

  std::string hostName, serialNumber, model, platformUuid, version, secret;
};

void AddAgent(Session& session, const std::string& agent, const std::string& token,
              const Request& request, const Facts& facts) {
  const auto waiting = session.Rows<1>("SELECT count(*) FROM agents WHERE state='waiting'");
  if (facts.secret.empty() && std::stoll(waiting.at(0)[0]) >= MAX_WAITING) {
    throw Refusal{429, "Too many agents wait for enrolment.", 3600};
  }
  session.Run(
      "INSERT INTO agents(agent, state, token, secret, host_name, serial_number, model, "
      "platform_uuid, agent_version, note, created) VALUES(?,'waiting',?,'',?,?,?,?,?,'',?) "
      "ON CONFLICT DO NOTHING",
      {agent, token, facts.hostName, facts.serialNumber, facts.model, facts.platformUuid,
       facts.version, Now()});
  session.Run(
      "INSERT INTO contacts(agent, last_contact, address) VALUES(?,?,?) "
      "ON CONFLICT DO NOTHING",
      {agent, Now(), request.address});
}

void NoteConflict(Session& session, const std::string& agent, const std::string& token,
                  const Request& request, const Facts& facts) {
  session.Run(
      "INSERT INTO conflicts(agent, token, facts, address, first_time, last_time, times) "
      "VALUES(?,?,?,?,?,?,1) ON CONFLICT(agent) DO UPDATE SET token=excluded.token, "
      "facts=excluded.facts, address=excluded.address, last_time=excluded.last_time, "
      "times=conflicts.times+1",
      {agent, token, facts.Text(), request.address, Now(), Now()});
}

/// Uses the secret once. False if it lets this machine in no more, or never did.
bool UseSecret(Session& session, const Facts& facts, std::string& name) {
  const std::string hash = HashOf(facts.secret);
  const auto rows =
      session.Rows<2>("SELECT name, serial_numbers FROM secrets WHERE hash=?", {hash});
  if (rows.empty()) return false;
  const Json serials = Json::parse(rows.front()[1]);
  const bool isListed =
      serials.empty() || std::count(serials.begin(), serials.end(), Json(facts.serialNumber)) != 0;
  name = rows.front()[0];
  return isListed && session.Run(
                         "UPDATE secrets SET last_use=?, "
                         "uses_left=CASE WHEN uses_left<0 THEN -1 ELSE uses_left-1 END "
                         "WHERE hash=? AND revoked=0 AND (expires=0 OR expires>?) AND uses_left<>0",
                         {Now(), hash, Now()}) == 1;
}

/// Another agent of the same logic board that is enrolled; or empty.
std::string TwinOf(Session& session, const std::string& agent, const Facts& facts) {
  if (facts.platformUuid.empty()) return {};
  const auto rows = session.Rows<1>(
      "SELECT agent FROM agents WHERE platform_uuid=? AND agent<>? AND state='enrolled' "
      "ORDER BY created LIMIT 1",
      {facts.platformUuid, agent});
  return rows.empty() ? std::string() : rows.front()[0];
}

/// Whether an agent that waits is enrolled now. A second agent of a machine waits for a person even
/// with a secret, since it may be another machine that claims to be this one.
bool LetIn(Session& session, const std::string& agent, const Facts& facts) {
  const std::string twin = TwinOf(session, agent, facts);
  std::string name;
  if (!twin.empty()) {
    session.Run("UPDATE agents SET note=? WHERE agent=?", {"same platformUuid as " + twin, agent});
    return false;
  }
  if (facts.secret.empty() || !UseSecret(session, facts, name)) return false;
  session.Run("UPDATE agents SET state='enrolled', secret=? WHERE agent=?", {name, agent});
  return true;
}

}  // namespace

Response Protocol::Enrol(const std::string& agent, const Request& request, const Json& body) const {
  const Facts facts(body);
  const std::string token = HashOf(TokenOf(request.authorization));
  return pool_.With([&](Session& session) {
    Transaction transaction(session);
    const auto find = [&] {
      return session.Rows<2>("SELECT state, token FROM agents WHERE agent=?", {agent});
    };
    auto rows = find();
    if (rows.empty()) {
      AddAgent(session, agent, token, request, facts);
      rows = find();
    }
    const auto& [state, known] = rows.at(0);
    Response response = ErrorResponse(202, "An administrator has to agree to the enrolment.");
    if (!IsSameHash(token, known)) {
      NoteConflict(session, agent, token, request, facts);
      response = ErrorResponse(409, "Another token is known for this identifier.");
    } else if (state == "refused") {
      response = ErrorResponse(403, "An administrator has refused this agent.");
    } else {
      session.Run(
          "UPDATE agents SET host_name=?, serial_number=?, model=?, platform_uuid=?, "
          "agent_version=? WHERE agent=?",
          {facts.hostName, facts.serialNumber, facts.model, facts.platformUuid, facts.version,
           agent});
      if (state == "enrolled" || LetIn(session, agent, facts)) {
        response = JsonResponse({{"identifier", agent}});
      }
    }
    transaction.Commit();
    return response;
  });
}

bool IsEnrolled(Session& session, const std::string& agent, const Request& request) {
  const auto rows = session.Rows<3>(
      "SELECT a.state, a.token, c.last_contact FROM agents a JOIN contacts c ON c.agent=a.agent "
      "WHERE a.agent=?",
      {agent});
  const std::string token = HashOf(TokenOf(request.authorization));
  if (rows.empty() || rows.front()[0] != "enrolled" || !IsSameHash(token, rows.front()[1])) {
    return false;
  }
  if (std::stoll(rows.front()[2]) + CONTACT_STEP > Now()) return true;
  session.Run("UPDATE contacts SET last_contact=?, address=? WHERE agent=?",
              {Now(), request.address, agent});
  return true;
}

}  // namespace Norvik::Receiver
