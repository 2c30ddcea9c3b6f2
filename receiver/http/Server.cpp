#include "receiver/http/Server.h"

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <chrono>
#include <thread>
#include <vector>

#include "common/log/Logger.h"
#include "receiver/http/Connection.h"

namespace Norvik::Receiver {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

constexpr unsigned int NETWORK_THREADS = 2;

asio::ssl::context TlsOf(const ServerOptions& options) {
  asio::ssl::context tls(asio::ssl::context::tls_server);
  SSL_CTX_set_min_proto_version(tls.native_handle(), TLS1_2_VERSION);
  SSL_CTX_set_options(tls.native_handle(), SSL_OP_NO_RENEGOTIATION);
  boost::system::error_code error;
  tls.use_certificate_chain_file(options.certificate, error);
  if (error) throw std::runtime_error(options.certificate + ": " + error.message());
  tls.use_private_key_file(options.certificateKey, asio::ssl::context::pem, error);
  if (error) throw std::runtime_error(options.certificateKey + ": " + error.message());
  return tls;
}

}  // namespace

struct Server::Parts {
  Parts(const ServerOptions& theOptions, Decide theDecide)
      : options(theOptions),
        decide(std::move(theDecide)),
        handlers(theOptions.handlers),
        acceptor(network),
        pause(network) {
    if (!options.certificate.empty()) {
      tls = std::make_unique<asio::ssl::context>(TlsOf(options));
    }
    boost::system::error_code error;
    const auto address = asio::ip::make_address(options.address, error);
    if (error) throw std::runtime_error("No address of this machine: " + options.address);
    const tcp::endpoint endpoint(address, options.port);
    acceptor.open(endpoint.protocol());
    acceptor.set_option(asio::socket_base::reuse_address(true));
    acceptor.bind(endpoint, error);
    if (!error) acceptor.listen(asio::socket_base::max_listen_connections, error);
    if (error) {
      throw std::runtime_error("Port " + std::to_string(options.port) + ": " + error.message());
    }
  }

  /// With too many connections open, further ones wait in the system's queue.
  void Accept() {
    if (open >= options.connections) {
      WaitToAccept();
      return;
    }
    acceptor.async_accept(asio::make_strand(network), [this](const boost::system::error_code& error,
                                                             tcp::socket socket) {
      if (error == asio::error::operation_aborted) return;
      if (error) {
        NORVIK_WARNING("A connection was not accepted: " + error.message());
        WaitToAccept();
        return;
      }
      ++open;
      ServeConnection(std::move(socket), tls.get(), handlers, decide, [this] { --open; });
      Accept();
    });
  }
  void WaitToAccept() {
    pause.expires_after(std::chrono::milliseconds(50));
    pause.async_wait([this](const boost::system::error_code& error) {
      if (!error) Accept();
    });
  }

  const ServerOptions options;
  const Decide decide;
  std::atomic<unsigned int> open{0};
  std::unique_ptr<asio::ssl::context> tls;
  asio::thread_pool handlers;
  asio::io_context network;
  tcp::acceptor acceptor;
  asio::steady_timer pause;
};

Server::Server(const ServerOptions& options, Decide decide)
    : parts_(std::make_unique<Parts>(options, std::move(decide))) {}

Server::~Server() = default;

unsigned short Server::Port() const { return parts_->acceptor.local_endpoint().port(); }

void Server::Run() {
  asio::signal_set signals(parts_->network, SIGTERM, SIGINT);
  signals.async_wait([this](const boost::system::error_code&, int) { parts_->network.stop(); });
  parts_->Accept();
  std::vector<std::thread> threads;
  for (unsigned int number = 1; number < NETWORK_THREADS; ++number) {
    threads.emplace_back([this] { parts_->network.run(); });
  }
  parts_->network.run();
  for (std::thread& thread : threads) thread.join();
  // What a handler has begun is finished; its connection has gone.
  parts_->handlers.join();
}

}  // namespace Norvik::Receiver
