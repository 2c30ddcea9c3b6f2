#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <string>

namespace Norvik::Host {

/// Who this agent is.
struct AgentIdentity {
  std::string identifier;  ///< a UUID
  std::string token;       ///< random and local while the server has given none
};

/// The identity that a file holds; empty if there is no file. Raises `std::runtime_error` for a
/// file that cannot be read or is damaged: an identity is never replaced unasked.
boost::optional<AgentIdentity> ReadIdentity(const boost::filesystem::path& file);

/// The same, but makes the file (mode 0600), with a new identity, if it is missing. Of several
/// processes that do so at once one wins, and all answer its identity.
AgentIdentity ReadOrMakeIdentity(const boost::filesystem::path& file);

}  // namespace Norvik::Host
