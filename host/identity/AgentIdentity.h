#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <mutex>
#include <string>

namespace Norvik::Host {

/// The identity of an agent, as its file stores it.
struct Identity {
  std::string identifier;    ///< a UUID
  std::string token;         ///< created at random by the agent, unless the server assigned one
  std::string server;        ///< the server that enrolled the agent with this token; may be empty
  std::string platformUuid;  ///< of the machine that the identity was made on; empty: unknown
};

/// The identity in a file; empty if the file does not exist. Throws `std::runtime_error` for a file
/// that cannot be read or is damaged: an identity is never replaced without a request.
boost::optional<Identity> ReadIdentity(const boost::filesystem::path& file);

/// The identity of the agent in this process, and its file (mode 0600). Safe on any thread.
class AgentIdentity {
 public:
  /// Reads the file; creates it with a new identity if it is missing. If several processes do so at
  /// once, all get the identity of the first. Throws what `ReadIdentity` throws.
  /// @param platformUuid of this machine, stored if the identity has none; empty: unknown
  explicit AgentIdentity(const boost::filesystem::path& file, const std::string& platformUuid = "");

  Identity Get() const;

  /// Records that a server has enrolled the agent with this token. The file is written when this
  /// returns; if it cannot be, throws a subclass of `std::exception` and changes nothing.
  void Acknowledge(const std::string& server, const std::string& token);
  /// Records that the server no longer knows the agent, which must enrol again. Only this process
  /// remembers that; the next one learns it from the server again.
  void Revoke();

 private:
  const boost::filesystem::path file_;
  mutable std::mutex mutex_;
  Identity identity_;
};

}  // namespace Norvik::Host
