#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/thread_pool.hpp>

#include "receiver/http/Message.h"

namespace Norvik::Receiver {

/// Serves the requests of one connection on a coroutine of the socket's executor, a strand.
/// @param tls  null: plain HTTP
/// @param done called once the connection has ended
void ServeConnection(boost::asio::ip::tcp::socket socket, boost::asio::ssl::context* tls,
                     boost::asio::thread_pool& handlers, const Decide& decide,
                     std::function<void()> done);

}  // namespace Norvik::Receiver
