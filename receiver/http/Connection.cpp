#include "receiver/http/Connection.h"

#include <sodium.h>

#include <boost/asio/post.hpp>
#include <boost/asio/spawn.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>
#include <chrono>
#include <limits>
#include <utility>
#include <vector>

#include "common/log/Logger.h"
#include "platform/FileSystem.h"

namespace Norvik::Receiver {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using std::chrono::seconds;
using Clock = std::chrono::steady_clock;

constexpr std::uint32_t MAX_HEADER = 16 << 10;
constexpr std::size_t PIECE = 64 << 10;
constexpr seconds HEAD_TIME(30), PIECE_TIME(30), IDLE_TIME(90);
/// Of a coroutine. Memory is used only as far as the calls go.
constexpr std::size_t STACK = 256 << 10;
constexpr std::uint64_t SLOWEST = 4096;  ///< bytes a second
/// An answer before the end of the body would be lost with the connection: so much is read first.
constexpr std::uint64_t MAX_UNUSED_BODY = 16 << 20;

/// Runs a function on a thread that may block while the coroutine waits.
template <class Function>
void RunBlocking(asio::thread_pool& threads, Function function, asio::yield_context yield) {
  asio::async_initiate<asio::yield_context, void()>(
      [&threads, &function](auto handler) {
        asio::post(threads, [&function, handler = std::move(handler)]() mutable {
          function();
          auto executor = asio::get_associated_executor(handler);
          asio::post(executor, std::move(handler));
        });
      },
      yield);
}

std::string Text(beast::string_view text) { return {text.data(), text.size()}; }

/// Where the body of a request goes.
class BodySink {
 public:
  BodySink(const BodyPlan& plan, Request& request) : request_(request) {
    if (plan.file.empty()) return;
    request_.file = std::make_unique<Platform::ReplacementFile>(plan.file);
    crypto_hash_sha256_init(&state_);
  }
  void Write(const char* data, std::size_t size) {
    if (!request_.file) {
      request_.body.append(data, size);
      return;
    }
    crypto_hash_sha256_update(&state_, reinterpret_cast<const unsigned char*>(data), size);
    Platform::WriteAll(request_.file->Descriptor(), data, size);
    request_.fileSize += size;
  }
  void End() {
    if (!request_.file) return;
    unsigned char digest[crypto_hash_sha256_BYTES];
    crypto_hash_sha256_final(&state_, digest);
    char text[2 * sizeof(digest) + 1];
    request_.sha256 = sodium_bin2hex(text, sizeof(text), digest, sizeof(digest));
  }

 private:
  Request& request_;
  crypto_hash_sha256_state state_{};
};

/// A connection whose stream is plain or encrypted.
template <class Stream>
class Connection {
 public:
  Connection(Stream& stream, asio::thread_pool& handlers, const Decide& decide, std::string address)
      : stream_(stream), handlers_(handlers), decide_(decide), address_(std::move(address)) {}

  void Serve(asio::yield_context yield) {
    while (ServeRequest(yield)) {
    }
  }

 private:
  using Parser = http::request_parser<http::buffer_body>;

  void SetTime(seconds time) { beast::get_lowest_layer(stream_).expires_after(time); }

  /// False if the connection has ended.
  bool ServeRequest(asio::yield_context yield) {
    beast::error_code error;
    SetTime(IDLE_TIME);
    if (buffer_.size() == 0) {
      const std::size_t size = stream_.async_read_some(buffer_.prepare(PIECE), yield[error]);
      if (error) return false;
      buffer_.commit(size);
    }
    SetTime(HEAD_TIME);
    Parser parser;
    parser.header_limit(MAX_HEADER);
    parser.body_limit(std::numeric_limits<std::uint64_t>::max());  // of `ReadBody`
    http::async_read_header(stream_, buffer_, parser, yield[error]);
    if (error) {
      if (error.category() == make_error_code(http::error::bad_method).category() &&
          error != http::error::end_of_stream && error != http::error::partial_message) {
        const bool isLong = error == http::error::header_limit;
        Send(ErrorResponse(isLong ? 431 : 400, "The head of the request is not HTTP/1.1."), false,
             yield);
      }
      return false;
    }
    return Answer(parser, yield);
  }

  bool Answer(Parser& parser, asio::yield_context yield) {
    Request request = HeadOf(parser);
    Decision decision;
    RunBlocking(
        handlers_, [&] { decision = decide_(request); }, yield);
    const bool isWanted = decision.plan.handle != nullptr;
    if (isWanted && request.length && *request.length > decision.plan.limit) {
      decision = {{}, ErrorResponse(413, "The body of the request is too large.")};
    }
    bool isWhole = false;
    try {
      isWhole = ReadBody(parser, decision, request, yield);
    } catch (const std::system_error& failure) {
      NORVIK_ERROR(std::string("A body could not be written: ") + failure.what());
      decision = {{}, ErrorResponse(503, "The body could not be stored.", 60)};
    }
    if (!isWhole && decision.response.body.empty()) return false;
    if (isWhole && decision.plan.handle) {
      RunBlocking(
          handlers_, [&] { decision.response = decision.plan.handle(request); }, yield);
    }
    return Send(decision.response, isWhole && parser.keep_alive(), yield) && isWhole &&
           parser.keep_alive();
  }

  Request HeadOf(const Parser& parser) const {
    const auto& head = parser.get();
    Request request;
    request.method = Text(head.method_string());
    request.target = Text(head.target());
    request.authorization = Text(head[http::field::authorization]);
    request.fileName = Text(head["Norvik-File-Name"]);
    request.address = address_;
    if (const auto length = parser.content_length()) request.length = *length;
    return request;
  }

  /// False if the body is not whole: the connection must end. The decision then has an answer if
  /// there is one to send.
  bool ReadBody(Parser& parser, Decision& decision, Request& request, asio::yield_context yield) {
    const bool isWanted = decision.plan.handle != nullptr;
    const std::uint64_t limit = isWanted ? decision.plan.limit : MAX_UNUSED_BODY;
    const bool expects = beast::iequals(parser.get()[http::field::expect], "100-continue");
    if (!isWanted && (expects || request.length.value_or(0) > limit)) return parser.is_done();
    if (expects && !SendContinue(yield)) return false;
    BodySink sink(decision.plan, request);
    const auto start = Clock::now();
    std::vector<char> piece(PIECE);
    std::uint64_t size = 0;
    while (!parser.is_done()) {
      parser.get().body().data = piece.data();
      parser.get().body().size = piece.size();
      SetTime(PIECE_TIME);
      beast::error_code error;
      http::async_read_some(stream_, buffer_, parser, yield[error]);
      if (error && error != http::error::need_buffer) return false;
      const std::size_t read = piece.size() - parser.get().body().size;
      size += read;
      if (size > limit) {
        decision = {{}, ErrorResponse(413, "The body of the request is too large.")};
        return false;
      }
      if (isWanted) sink.Write(piece.data(), read);
      if (Clock::now() - start > seconds(60 + size / SLOWEST)) return false;
    }
    if (isWanted) sink.End();
    return true;
  }

  bool SendContinue(asio::yield_context yield) {
    http::response<http::empty_body> response(http::status::continue_, 11);
    beast::error_code error;
    SetTime(PIECE_TIME);
    http::async_write(stream_, response, yield[error]);
    return !error;
  }

  bool Send(const Response& answer, bool keepsOpen, asio::yield_context yield) {
    http::response<http::string_body> response;
    response.result(static_cast<unsigned int>(answer.status));
    response.set(http::field::content_type, "application/json");
    if (answer.retryAfter) {
      response.set(http::field::retry_after, std::to_string(answer.retryAfter));
    }
    response.keep_alive(keepsOpen);
    response.body() = answer.body;
    response.prepare_payload();
    beast::error_code error;
    SetTime(seconds(60 + answer.body.size() / SLOWEST));
    http::async_write(stream_, response, yield[error]);
    return !error;
  }

  Stream& stream_;
  asio::thread_pool& handlers_;
  const Decide& decide_;
  const std::string address_;
  beast::flat_buffer buffer_{MAX_HEADER + PIECE};
};

void Serve(beast::tcp_stream& stream, asio::ssl::context* tls, asio::thread_pool& handlers,
           const Decide& decide, asio::yield_context yield) {
  beast::error_code error;
  const auto peer = stream.socket().remote_endpoint(error);
  if (error) return;
  const std::string address = peer.address().to_string();
  if (!tls) {
    Connection<beast::tcp_stream>(stream, handlers, decide, address).Serve(yield);
    stream.socket().shutdown(asio::ip::tcp::socket::shutdown_both, error);
    return;
  }
  beast::ssl_stream<beast::tcp_stream> encrypted(std::move(stream), *tls);
  beast::get_lowest_layer(encrypted).expires_after(HEAD_TIME);
  encrypted.async_handshake(asio::ssl::stream_base::server, yield[error]);
  if (error) return;
  Connection<decltype(encrypted)>(encrypted, handlers, decide, address).Serve(yield);
  beast::get_lowest_layer(encrypted).expires_after(seconds(5));
  encrypted.async_shutdown(yield[error]);
}

}  // namespace

void ServeConnection(asio::ip::tcp::socket socket, asio::ssl::context* tls,
                     asio::thread_pool& handlers, const Decide& decide,
                     std::function<void()> done) {
  auto executor = socket.get_executor();
  auto stream = std::make_shared<beast::tcp_stream>(std::move(socket));
  asio::spawn(
      executor,
      [stream, tls, &handlers, &decide, done](asio::yield_context yield) {
        try {
          Serve(*stream, tls, handlers, decide, yield);
        } catch (const std::exception& failure) {
          NORVIK_ERROR(std::string("A connection has ended: ") + failure.what());
        }
        done();
      },
      boost::coroutines::attributes(STACK));
}

}  // namespace Norvik::Receiver
