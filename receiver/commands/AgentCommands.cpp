#include <sodium.h>

#include <boost/filesystem/operations.hpp>
#include <iostream>
#include <nlohmann/json.hpp>

#include "receiver/commands/Commands.h"
#include "receiver/protocol/Credentials.h"

namespace Norvik::Receiver {

namespace {

constexpr long long DAY = 86400;

void ListWaiting(const Place& place, Session& session) {
  auto rows = session.Rows<8>(
      "SELECT a.agent, a.state, a.host_name, a.serial_number, a.model, c.address, c.last_contact, "
      "a.note FROM agents a JOIN contacts c ON c.agent=a.agent WHERE a.state<>'enrolled' "
      "ORDER BY a.created");
  for (const auto& [agent, facts, address, last, times] : session.Rows<5>(
           "SELECT agent, facts, address, last_time, times FROM conflicts ORDER BY first_time")) {
    const auto said = nlohmann::json::parse(facts);
    rows.push_back({agent, "conflict", said.at("hostName").get<std::string>(),
                    said.at("serialNumber").get<std::string>(), said.at("model").get<std::string>(),
                    address, last, "another token, " + times + " times"});
  }
  PrintRows(
      place,
      {"agent", "state", "hostName", "serialNumber", "model", "address", "lastContact#", "note"},
      rows);
}

bool ChangeAgent(Session& session, const ApproveOptions& options, const std::string& agent) {
  if (options.acceptsToken) {
    const auto rows = session.Rows<1>("SELECT token FROM conflicts WHERE agent=?", {agent});
    if (rows.empty()) return false;
    session.Run("UPDATE agents SET token=?, state='enrolled', note='' WHERE agent=?",
                {rows.front()[0], agent});
    return session.Run("DELETE FROM conflicts WHERE agent=?", {agent}) == 1;
  }
  return session.Run("UPDATE agents SET state=?, note='' WHERE agent=?",
                     {options.refuses ? "refused" : "enrolled", agent}) == 1;
}

void MakeSecret(const Place& place, Session& session, const SecretOptions& options) {
  const std::string secret = RandomText(24);
  const long long expires = options.days == 0 ? 0 : Now() + options.days * DAY;
  const auto made = session.Run(
      "INSERT INTO secrets(hash, name, expires, uses_left, serial_numbers, revoked, created, "
      "last_use) VALUES(?,?,?,?,?,0,?,0) ON CONFLICT DO NOTHING",
      {HashOf(secret), options.name, expires, options.uses,
       nlohmann::json(options.serialNumbers).dump(), Now()});
  if (made == 0) throw std::runtime_error("There is a secret with the name " + options.name);
  PrintRows(place, {"name", "secret"}, {{options.name, secret}});
}

/// One line of standard input.
std::string ReadPassword() {
  std::string password;
  std::getline(std::cin, password);
  if (password.size() < 10) throw UsageError("a password has at least 10 characters");
  return password;
}

void AddAccount(Session& session, const AccountOptions& options) {
  const std::string password = ReadPassword();
  char hash[crypto_pwhash_STRBYTES] = {};
  if (crypto_pwhash_str(hash, password.data(), password.size(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                        crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0) {
    throw std::runtime_error("There is not enough memory for the hash of a password");
  }
  session.Run(
      "INSERT INTO accounts(name, role, password, created) VALUES(?,?,?,?) "
      "ON CONFLICT(name) DO UPDATE SET role=excluded.role, password=excluded.password",
      {options.name, options.role, std::string(hash), Now()});
}

void RequireName(const std::string& name) {
  if (name.empty()) throw UsageError("a NAME is missing");
}

}  // namespace

int Approve(const Place& place, const ApproveOptions& options) {
  Session session = place.Open();
  if (options.agents.empty()) ListWaiting(place, session);
  Transaction transaction(session);
  for (const std::string& agent : options.agents) {
    if (!ChangeAgent(session, options, agent)) {
      throw std::runtime_error("There is no such agent" +
                               std::string(options.acceptsToken ? " with a conflict" : "") + ": " +
                               agent);
    }
  }
  transaction.Commit();
  return 0;
}

int ChangeSecrets(const Place& place, const SecretOptions& options) {
  Session session = place.Open();
  if (options.action == "list") {
    PrintRows(place, {"name", "expires#", "usesLeft#", "revoked#", "lastUse#", "serialNumbers"},
              session.Rows<6>("SELECT name, expires, uses_left, revoked, last_use, serial_numbers "
                              "FROM secrets ORDER BY created, name"));
    return 0;
  }
  RequireName(options.name);
  if (options.action == "make") {
    MakeSecret(place, session, options);
  } else if (session.Run("UPDATE secrets SET revoked=1 WHERE name=?", {options.name}) == 0) {
    throw std::runtime_error("There is no secret with the name " + options.name);
  }
  return 0;
}

int ChangeAccounts(const Place& place, const AccountOptions& options) {
  Session session = place.Open();
  if (options.action == "list") {
    PrintRows(place, {"name", "role", "created#"},
              session.Rows<3>("SELECT name, role, created FROM accounts ORDER BY name"));
    return 0;
  }
  RequireName(options.name);
  if (options.action == "add") {
    AddAccount(session, options);
  } else if (session.Run("DELETE FROM accounts WHERE name=?", {options.name}) == 0) {
    throw std::runtime_error("There is no account with the name " + options.name);
  }
  return 0;
}

}  // namespace Norvik::Receiver
