#pragma once

#include <boost/asio/local/stream_protocol.hpp>
#include <boost/filesystem/path.hpp>

namespace Norvik::Host {

/// The socket of this machine's service, in a folder that only root can write.
inline constexpr char SYSTEM_SOCKET[] = "/var/run/norvik/agent.sock";
/// The name of the socket, in its data folder, of an agent that is not the machine's service.
inline constexpr char SOCKET_FILE[] = "agent.sock";

/// The address of a socket file. Throws `std::runtime_error` for a path that is too long.
boost::asio::local::stream_protocol::endpoint EndpointOf(const boost::filesystem::path& socket);

/// The address of a socket file to serve: creates its folder, and removes the socket of a service
/// that has ended. Throws `std::runtime_error` if another process serves it or the path is not a
/// socket.
boost::asio::local::stream_protocol::endpoint FreeEndpoint(const boost::filesystem::path& socket);

}  // namespace Norvik::Host
