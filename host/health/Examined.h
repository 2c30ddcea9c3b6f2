#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <utility>

#include "common/database/DatabaseExamination.h"
#include "host/OutputText.h"
#include "host/configuration/ConfigurationFile.h"
#include "host/identity/AgentIdentity.h"
#include "host/server/HttpClient.h"

namespace Norvik::Host {

/// Which agent to examine. Paths as the command line gives them.
struct HealthOptions {
  boost::filesystem::path dataFolder;
  bool dataFolderGiven = false;  ///< false: that of a running agent is examined, if one answers
  boost::filesystem::path configurationFile;  ///< empty: the stored one
  boost::filesystem::path moduleFile;
  boost::filesystem::path socket;
  std::chrono::system_clock::time_point now = std::chrono::system_clock::now();
};

/// A value that the first thread to ask for it makes. The others wait for it.
template <class Value>
class OnDemand {
 public:
  /// @param make throws nothing
  explicit OnDemand(std::function<Value()> make) : make_(std::move(make)) {}
  const Value& Get() const {
    std::call_once(made_, [this] { value_ = make_(); });
    return value_;
  }

 private:
  const std::function<Value()> make_;
  mutable std::once_flag made_;
  mutable Value value_;
};

/// The agent that serves the socket.
struct AgentAnswer {
  OrderedJson status;     ///< its answer; null without one
  std::string problem;    ///< why there is no answer
  bool isServed = false;  ///< a process serves the socket
};

/// A file of the data folder that was read: a value, or a problem, or neither, if there is no file.
template <class Value>
struct StoredValue {
  boost::optional<Value> value;
  std::string problem;
  bool isHidden = false;  ///< this user may not read it
};

/// The one request to the server.
struct ServerAnswer {
  boost::optional<std::string> origin;  ///< empty: not known, as the configuration is not; "": none
  bool sentToken = false;               ///< with the token of the agent
  HttpAnswer answer;
  std::chrono::system_clock::time_point at;  ///< the time of day when the answer was there
};

/// What checks look at. Everything is read at most once, when it is needed first. Safe on any
/// thread.
class Examined {
 public:
  /// How long the agent, the server and the database each get.
  static constexpr std::chrono::milliseconds LIMIT{1700};

  /// Asks the agent at the socket, if one serves it, for at most `LIMIT`.
  explicit Examined(HealthOptions options);
  Examined(const Examined&) = delete;
  Examined& operator=(const Examined&) = delete;

  /// With the data folder that is examined, absolute.
  const HealthOptions& Options() const { return options_; }
  boost::filesystem::path File(const char* name) const { return options_.dataFolder / name; }
  const AgentAnswer& Agent() const { return agent_; }

  const StoredValue<EffectiveConfiguration>& Configuration() const { return configuration_.Get(); }
  const StoredValue<Identity>& StoredIdentity() const { return identity_.Get(); }
  const Common::DatabaseExamination& Database() const { return database_.Get(); }
  const ServerAnswer& Server() const { return server_.Get(); }

 private:
  HealthOptions options_;
  AgentAnswer agent_;
  const OnDemand<StoredValue<EffectiveConfiguration>> configuration_;
  const OnDemand<StoredValue<Identity>> identity_;
  const OnDemand<Common::DatabaseExamination> database_;
  const OnDemand<ServerAnswer> server_;
};

/// Whether the machine that is examined is a Mac: this one, or the recorded one in force.
bool IsMac();

/// Whether a path exists. `HIDDEN`: this user may not know.
enum class Presence { MISSING, THERE, HIDDEN };
Presence PresenceOf(const boost::filesystem::path& path);
/// The same, but a file or folder that this user may not read is `HIDDEN`, too.
Presence ReadablePresenceOf(const boost::filesystem::path& path);

}  // namespace Norvik::Host
