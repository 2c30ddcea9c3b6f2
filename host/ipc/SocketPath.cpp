#include "host/ipc/SocketPath.h"

#include <boost/asio/io_context.hpp>
#include <boost/filesystem/operations.hpp>
#include <stdexcept>

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;
using boost::asio::local::stream_protocol;

bool IsServed(const stream_protocol::endpoint& endpoint) {
  boost::asio::io_context context;
  stream_protocol::socket socket(context);
  boost::system::error_code error;
  socket.connect(endpoint, error);
  return error != boost::asio::error::connection_refused &&
         error != boost::system::errc::no_such_file_or_directory;
}

}  // namespace

stream_protocol::endpoint EndpointOf(const fs::path& socket) {
  try {
    return stream_protocol::endpoint(fs::absolute(socket).string());
  } catch (const boost::system::system_error&) {
    throw std::runtime_error("the path of the socket " + socket.string() +
                             " is too long for this system; --socket names another");
  }
}

stream_protocol::endpoint FreeEndpoint(const fs::path& socket) {
  const auto endpoint = EndpointOf(socket);
  boost::system::error_code ignored;
  fs::create_directories(fs::absolute(socket).parent_path(), ignored);
  const auto status = fs::symlink_status(socket, ignored);
  if (status.type() == fs::file_not_found) return endpoint;
  if (status.type() != fs::socket_file) {
    throw std::runtime_error(socket.string() + " is in the way of the socket");
  }
  if (IsServed(endpoint)) {
    throw std::runtime_error("another agent serves the socket " + socket.string());
  }
  fs::remove(socket, ignored);
  return endpoint;
}

}  // namespace Norvik::Host
