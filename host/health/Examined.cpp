#include "host/health/Examined.h"

#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <exception>

#include "common/identification/HostInfoProvider.h"
#include "host/HostError.h"
#include "host/data/DataFolder.h"
#include "host/ipc/AskAgent.h"
#include "host/server/ServerOptions.h"
#include "platform/LocalAccounts.h"
#include "platform/RecordedMachine.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

AgentAnswer AskForStatus(const fs::path& socket) {
  AgentAnswer agent;
  try {
    const std::string answer = AskAgent(socket, JsonLine({{"request", "status"}}), Examined::LIMIT);
    agent.isServed = true;
    agent.status = OrderedJson::parse(answer, nullptr, false);
    if (!agent.status.is_object() || agent.status.contains("error")) {
      agent.problem = "it refuses to give its status";
      agent.status = nullptr;
    }
  } catch (const NoAnswer& silence) {
    agent.isServed = silence.Runs();
    agent.problem = silence.Reason();
  } catch (const std::exception& error) {
    agent.problem = ReasonOf(error);
  }
  return agent;
}

template <class Value>
StoredValue<Value> ReadStored(const fs::path& file,
                              const std::function<boost::optional<Value>()>& read) {
  StoredValue<Value> stored;
  stored.isHidden = ReadablePresenceOf(file) == Presence::HIDDEN;
  if (stored.isHidden) return stored;
  try {
    stored.value = read();
  } catch (const std::exception& error) {
    stored.problem = ReasonOf(error);
  }
  return stored;
}

StoredValue<EffectiveConfiguration> ReadConfigurationOf(const HealthOptions& options) {
  const fs::path stored = options.dataFolder / CONFIGURATION_FILE;
  const fs::path& given = options.configurationFile;
  return ReadStored<EffectiveConfiguration>(given.empty() ? stored : given, [&] {
    return boost::make_optional(ReadConfiguration(given, stored));
  });
}

/// Nothing that the server keeps: a list of no states, or a question for a path without an agent.
HttpRequest HarmlessRequest(const boost::optional<Identity>& identity) {
  HttpRequest request;
  request.wantsFacts = true;
  request.path = "/norvik/v1/agents/";
  request.method = "GET";
  request.headers = {"Accept: application/json",
                     "User-Agent: norvik-agent/" + Common::GetAgentVersion()};
  if (!identity) return request;
  request.method = "POST";
  request.path += identity->identifier + "/statuses";
  request.headers.push_back("Authorization: Bearer " + identity->token);
  request.headers.push_back("Content-Type: application/json");
  request.body = R"({"statuses": []})";
  return request;
}

ServerAnswer AskServer(const Examined& examined) {
  ServerAnswer server;
  const auto& configuration = examined.Configuration().value;
  if (!configuration) return server;
  ServerOptions options = ServerOptionsOf(configuration->values.communications);
  server.origin = options.address.empty() ? "" : options.Origin();
  if (server.origin->empty()) return server;
  options.limits.connect = options.limits.request = Examined::LIMIT;
  const auto& identity = examined.StoredIdentity().value;
  // A token belongs to the server that has enrolled the agent, and to no other.
  server.sentToken = identity && identity->server == *server.origin;
  try {
    const std::atomic<bool> stopped{false};
    HttpClient client(options, stopped);
    server.answer = client.Send(HarmlessRequest(server.sentToken ? identity : boost::none));
  } catch (const std::exception& error) {
    server.answer.failure = error.what();
  }
  server.at = std::chrono::system_clock::now();
  return server;
}

}  // namespace

Examined::Examined(HealthOptions options)
    : options_(std::move(options)),
      agent_(AskForStatus(options_.socket)),
      configuration_([this] { return ReadConfigurationOf(options_); }),
      identity_([this] {
        const fs::path file = File(IDENTITY_FILE);
        return ReadStored<Identity>(file, [&] { return ReadIdentity(file); });
      }),
      database_([this] { return Common::ExamineDatabase(options_.dataFolder, LIMIT); }),
      server_([this] { return AskServer(*this); }) {
  const std::string folder =
      agent_.status.is_object() ? agent_.status.value("dataFolder", "") : std::string();
  if (!options_.dataFolderGiven && !folder.empty()) options_.dataFolder = folder;
  options_.dataFolder = fs::absolute(options_.dataFolder).lexically_normal();
}

bool IsMac() { return Platform::IsMachineRecorded() || Platform::SystemName() == "Darwin"; }

Presence PresenceOf(const fs::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) == 0) return Presence::THERE;
  return errno == ENOENT || errno == ENOTDIR ? Presence::MISSING : Presence::HIDDEN;
}

Presence ReadablePresenceOf(const fs::path& path) {
  const Presence presence = PresenceOf(path);
  if (presence != Presence::THERE || ::access(path.c_str(), R_OK) == 0) return presence;
  // A link to nothing is there, and reading it reports that.
  return errno == ENOENT ? presence : Presence::HIDDEN;
}

}  // namespace Norvik::Host
