#pragma once

#include <boost/filesystem/path.hpp>
#include <mutex>
#include <string>

#include "host/AgentIdentity.h"

namespace Norvik::Host {

/// The agent's identity in this process, and its file. Safe on any thread.
class IdentityStore {
 public:
  /// Takes the identity from the file; makes both if there is none (see `ReadOrMakeIdentity`).
  explicit IdentityStore(const boost::filesystem::path& file);

  AgentIdentity Get() const;

  /// A server has taken on the agent, with this token. The file has it when this returns; raises a
  /// subclass of `std::exception`, and changes nothing, if it cannot be written.
  void Acknowledge(const std::string& server, const std::string& token);
  /// The server does not know the agent any more: it has to be taken on again. Only this process
  /// remembers that; the next one finds it out as this one did.
  void Revoke();

 private:
  const boost::filesystem::path file_;
  mutable std::mutex mutex_;
  AgentIdentity identity_;
};

}  // namespace Norvik::Host
