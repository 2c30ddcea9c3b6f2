#include "forge/agents/HttpLine.h"

#include <curl/curl.h>

#include <boost/asio/error.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <map>
#include <stdexcept>
#include <utility>

namespace Norvik::Forge {

namespace asio = boost::asio;

namespace {

// As docs/server-protocol.md has them.
constexpr long CONNECT_SECONDS = 15;
constexpr long REQUEST_SECONDS = 60;
constexpr std::size_t LARGEST_ANSWER = 1 << 20;

/// A socket of libcurl, which closes it itself.
struct Watch {
  Watch(asio::io_context& context, curl_socket_t socket) : stream(context, socket) {}

  asio::posix::stream_descriptor stream;
  int wanted = 0;
  bool live = true;
  bool reading = false;
  bool writing = false;
};

std::size_t TakeBody(char* data, std::size_t size, std::size_t count, void* target) {
  auto& body = *static_cast<std::string*>(target);
  if (body.size() + size * count > LARGEST_ANSWER) return 0;
  body.append(data, size * count);
  return size * count;
}

}  // namespace

HttpLibrary::HttpLibrary(std::string caFile) : caFile_(std::move(caFile)) {
  if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) {
    throw std::runtime_error("libcurl cannot be used");
  }
  share_ = curl_share_init();
  curl_share_setopt(share_, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
}

HttpLibrary::~HttpLibrary() {
  curl_share_cleanup(share_);
  curl_global_cleanup();
}

/// A multi handle of libcurl for each line: one handle for all would give any agent the idle
/// connection of another. Its sockets and its timer are those of the context.
class HttpLine::Transfers : public std::enable_shared_from_this<HttpLine::Transfers> {
 public:
  Transfers(asio::io_context& context, const HttpLibrary& library)
      : context_(context), timer_(context), multi_(curl_multi_init()), easy_(curl_easy_init()) {
    if (!multi_ || !easy_) throw std::runtime_error("libcurl has no memory");
    curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, OnSocket);
    curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, OnTimer);
    curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
    curl_easy_setopt(easy_, CURLOPT_SHARE, library.Share());
    curl_easy_setopt(easy_, CURLOPT_PROTOCOLS_STR, "https");
    curl_easy_setopt(easy_, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    if (!library.CaFile().empty()) {
      curl_easy_setopt(easy_, CURLOPT_CAINFO, library.CaFile().c_str());
      curl_easy_setopt(easy_, CURLOPT_CAPATH, nullptr);
    }
    curl_easy_setopt(easy_, CURLOPT_PROXY, "");
    curl_easy_setopt(easy_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy_, CURLOPT_CONNECTTIMEOUT, CONNECT_SECONDS);
    curl_easy_setopt(easy_, CURLOPT_TIMEOUT, REQUEST_SECONDS);
    curl_easy_setopt(easy_, CURLOPT_ERRORBUFFER, error_);
    curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, TakeBody);
    curl_easy_setopt(easy_, CURLOPT_WRITEDATA, &answer_.body);
  }
  Transfers(const Transfers&) = delete;
  Transfers& operator=(const Transfers&) = delete;
  ~Transfers() {
    curl_slist_free_all(headers_);
    curl_easy_cleanup(easy_);
  }

  void Start(HttpRequest request, std::function<void(HttpAnswer)> done) {
    request_ = std::move(request);
    done_ = std::move(done);
    answer_ = {};
    error_[0] = '\0';
    curl_slist_free_all(std::exchange(headers_, nullptr));
    for (const std::string& header : request_.headers) {
      headers_ = curl_slist_append(headers_, header.c_str());
    }
    curl_easy_setopt(easy_, CURLOPT_URL, request_.url.c_str());
    curl_easy_setopt(easy_, CURLOPT_POSTFIELDSIZE_LARGE,
                     static_cast<curl_off_t>(request_.body.size()));
    curl_easy_setopt(easy_, CURLOPT_POSTFIELDS, request_.body.c_str());
    curl_easy_setopt(easy_, CURLOPT_CUSTOMREQUEST, request_.method.c_str());
    curl_easy_setopt(easy_, CURLOPT_HTTPHEADER, headers_);
    begin_ = std::chrono::steady_clock::now();
    curl_multi_add_handle(multi_, easy_);
  }

  void Close() {
    done_ = nullptr;
    timer_.cancel();
    curl_multi_remove_handle(multi_, easy_);
    curl_multi_cleanup(std::exchange(multi_, nullptr));
    while (!watches_.empty()) Forget(watches_.begin()->first);
  }

 private:
  static int OnSocket(CURL* /*easy*/, curl_socket_t socket, int what, void* self, void* /*own*/) {
    static_cast<Transfers*>(self)->Follow(socket, what);
    return 0;
  }
  static int OnTimer(CURLM* /*multi*/, long milliseconds, void* self) {
    static_cast<Transfers*>(self)->Schedule(milliseconds);
    return 0;
  }

  void Follow(curl_socket_t socket, int what) {
    if (what == CURL_POLL_REMOVE) {
      Forget(socket);
      return;
    }
    auto& watch = watches_[socket];
    if (!watch) watch = std::make_shared<Watch>(context_, socket);
    watch->wanted = what;
    Arm(watch);
  }

  void Forget(curl_socket_t socket) {
    const auto found = watches_.find(socket);
    if (found == watches_.end()) return;
    found->second->live = false;
    found->second->stream.release();
    watches_.erase(found);
  }

  void Arm(const std::shared_ptr<Watch>& watch) {
    Arm(watch, asio::posix::stream_descriptor::wait_read, &Watch::reading, CURL_POLL_IN,
        CURL_CSELECT_IN);
    Arm(watch, asio::posix::stream_descriptor::wait_write, &Watch::writing, CURL_POLL_OUT,
        CURL_CSELECT_OUT);
  }
  void Arm(const std::shared_ptr<Watch>& watch, asio::posix::stream_descriptor::wait_type type,
           bool Watch::*waiting, int wanted, int event) {
    if (!watch->live || (watch->wanted & wanted) == 0 || (*watch).*waiting) return;
    (*watch).*waiting = true;
    watch->stream.async_wait(type, [self = shared_from_this(), watch, waiting, wanted,
                                    event](const boost::system::error_code& error) {
      (*watch).*waiting = false;
      if (error || !watch->live || !self->multi_) return;
      if ((watch->wanted & wanted) != 0) self->Act(watch->stream.native_handle(), event);
      self->Arm(watch);
    });
  }

  void Schedule(long milliseconds) {
    timer_.cancel();
    if (milliseconds < 0) return;
    timer_.expires_after(std::chrono::milliseconds(milliseconds));
    timer_.async_wait([self = shared_from_this()](const boost::system::error_code& error) {
      if (!error && self->multi_) self->Act(CURL_SOCKET_TIMEOUT, 0);
    });
  }

  void Act(curl_socket_t socket, int event) {
    int running = 0;
    curl_multi_socket_action(multi_, socket, event, &running);
    int left = 0;
    while (const CURLMsg* const message = curl_multi_info_read(multi_, &left)) {
      if (message->msg == CURLMSG_DONE) Finish(message->data.result);
    }
  }

  void Finish(CURLcode result) {
    curl_multi_remove_handle(multi_, easy_);
    const auto end = std::chrono::steady_clock::now();
    answer_.seconds = std::chrono::duration<double>(end - begin_).count();
    long connections = 0;
    curl_easy_getinfo(easy_, CURLINFO_NUM_CONNECTS, &connections);
    if (connections > 0) {
      curl_easy_getinfo(easy_, CURLINFO_APPCONNECT_TIME, &answer_.connectSeconds);
    }
    if (result == CURLE_OK) {
      curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &answer_.status);
      curl_off_t seconds = 0;
      curl_easy_getinfo(easy_, CURLINFO_RETRY_AFTER, &seconds);
      if (seconds > 0) answer_.retryAfter = static_cast<long>(seconds);
    } else {
      answer_.error = error_[0] != '\0' ? error_ : curl_easy_strerror(result);
    }
    asio::post(context_,
               [self = shared_from_this(), done = std::move(done_), answer = std::move(answer_)] {
                 if (self->multi_ && done) done(answer);
               });
  }

  asio::io_context& context_;
  asio::steady_timer timer_;
  CURLM* multi_;  ///< null once the line is closed
  CURL* easy_;
  curl_slist* headers_ = nullptr;
  std::map<curl_socket_t, std::shared_ptr<Watch>> watches_;
  HttpRequest request_;
  HttpAnswer answer_;
  std::function<void(HttpAnswer)> done_;
  std::chrono::steady_clock::time_point begin_;
  char error_[CURL_ERROR_SIZE] = {};
};

HttpLine::HttpLine(asio::io_context& context, const HttpLibrary& library)
    : transfers_(std::make_shared<Transfers>(context, library)) {}

HttpLine::~HttpLine() { transfers_->Close(); }

void HttpLine::Send(HttpRequest request, std::function<void(HttpAnswer)> done) {
  transfers_->Start(std::move(request), std::move(done));
}

}  // namespace Norvik::Forge
