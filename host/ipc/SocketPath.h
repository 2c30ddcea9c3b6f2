#pragma once

#include <boost/asio/local/stream_protocol.hpp>
#include <boost/filesystem/path.hpp>

namespace Norvik::Host {

/// Where the service of this machine has its socket, in a folder that only root can write.
inline constexpr char SYSTEM_SOCKET[] = "/var/run/norvik/agent.sock";
/// The same of an agent that is not the machine's service, in its data folder.
inline constexpr char SOCKET_FILE[] = "agent.sock";

/// Address of a socket file. Raises `std::runtime_error` for a path that the system has no room
/// for.
boost::asio::local::stream_protocol::endpoint EndpointOf(const boost::filesystem::path& socket);

/// The same for who is going to serve it: makes its folder, and removes what a service left there
/// that has ended. Raises `std::runtime_error` if another process serves it, or something else
/// stands in its place.
boost::asio::local::stream_protocol::endpoint FreeEndpoint(const boost::filesystem::path& socket);

}  // namespace Norvik::Host
