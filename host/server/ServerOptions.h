#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/configuration/CommunicationsInfo.h"
#include "host/actions/Clock.h"
#include "host/history/DocumentHistory.h"
#include "host/identity/AgentIdentity.h"
#include "host/identity/HardwareIdentity.h"
#include "host/server/ServerContact.h"

namespace Norvik::Host {

/// Limits for any server, and the waits after its failures.
struct ServerLimits {
  std::chrono::milliseconds connect{15'000};
  /// For a request and its answer. A body adds the time that it takes at `bytesPerSecond`.
  std::chrono::milliseconds request{60'000};
  std::size_t bytesPerSecond = 4096;
  std::size_t answerBytes = 1 << 20;

  std::chrono::milliseconds firstWait{10'000};  ///< after a failure; doubles with each further one
  std::chrono::milliseconds longestWait{std::chrono::hours(1)};
  std::chrono::milliseconds longestServerWait{std::chrono::hours(24)};  ///< of `Retry-After`
};

/// How a connection to a server is made.
struct ServerOptions {
  std::string address;  ///< a host name, an IPv4 or an IPv6 address
  std::uint16_t port = 443;
  /// "https". Only tests use "http"; no configuration can.
  std::string scheme = "https";
  boost::filesystem::path caFile;  ///< PEM; empty: the certificates that the system trusts
  boost::filesystem::path dataFolder;
  boost::filesystem::path outbox;
  std::vector<std::string> extensions;  ///< of the files to deliver, with their dot
  std::shared_ptr<AgentIdentity> identity;
  std::shared_ptr<DocumentHistory> history;  ///< null: nothing is kept
  std::string enrolmentSecret;               ///< empty: none
  HardwareIdentity hardware;                 ///< of this machine, for its enrolment
  /// Hears of each request. Not null.
  std::shared_ptr<ServerContact> contact = std::make_shared<ServerContact>();
  ServerLimits limits;
  std::shared_ptr<const Clock> clock = std::make_shared<Clock>();

  /// "https://mgmt.example.com:443"
  std::string Origin() const;
};

/// The options that a configuration sets; the caller sets the others. An empty address means that
/// there is no server.
ServerOptions ServerOptionsOf(const Common::CommunicationsInfo& configuration);

}  // namespace Norvik::Host
