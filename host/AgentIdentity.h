#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <string>

namespace Norvik::Host {

/// Who this agent is.
struct AgentIdentity {
  std::string identifier;  ///< a UUID
  std::string token;       ///< made at random by the agent, unless the server gave another one
  std::string server;      ///< the server that has taken on the agent with this token; empty: none
};

/// The identity that a file holds; empty if there is no file. Raises `std::runtime_error` for a
/// file that cannot be read or is damaged: an identity is never replaced unasked.
boost::optional<AgentIdentity> ReadIdentity(const boost::filesystem::path& file);

/// The same, but makes the file (mode 0600), with a new identity, if it is missing. Of several
/// processes that do so at once one wins, and all answer its identity.
AgentIdentity ReadOrMakeIdentity(const boost::filesystem::path& file);

/// Replaces the file whole or not at all, mode 0600. Raises a subclass of `std::exception`.
void WriteIdentity(const boost::filesystem::path& file, const AgentIdentity& identity);

}  // namespace Norvik::Host
