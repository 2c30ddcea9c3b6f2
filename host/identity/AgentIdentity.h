#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <mutex>
#include <string>

namespace Norvik::Host {

/// Who an agent is, as its file holds it.
struct Identity {
  std::string identifier;  ///< a UUID
  std::string token;       ///< made at random by the agent, unless the server gave another one
  std::string server;      ///< the server that enrolled the agent with this token; empty: none
};

/// The identity that a file holds; empty if there is no file. Throws `std::runtime_error` for a
/// file that cannot be read or is damaged: an identity is never replaced unasked.
boost::optional<Identity> ReadIdentity(const boost::filesystem::path& file);

/// The identity of the agent in this process, and its file (mode 0600). Safe on any thread.
class AgentIdentity {
 public:
  /// Reads the file; makes it, with a new identity, if it is missing. Of several processes that do
  /// so at once one wins, and all of them get its identity. Throws as `ReadIdentity` does.
  explicit AgentIdentity(const boost::filesystem::path& file);

  Identity Get() const;

  /// A server has enrolled the agent, with this token. The file has it when this returns; throws a
  /// subclass of `std::exception`, and changes nothing, if it cannot be written.
  void Acknowledge(const std::string& server, const std::string& token);
  /// The server does not know the agent any more: it has to be enrolled again. Only this process
  /// remembers that; the next one finds it out as this one did.
  void Revoke();

 private:
  const boost::filesystem::path file_;
  mutable std::mutex mutex_;
  Identity identity_;
};

}  // namespace Norvik::Host
