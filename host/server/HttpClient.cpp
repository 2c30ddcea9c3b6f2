#include "host/server/HttpClient.h"

#include <curl/curl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <stdexcept>

#include "common/text/Text.h"
#include "host/server/ConnectionFacts.h"
#include "host/server/CurlLibrary.h"
#include "host/server/CurlProtocol.h"
#include "platform/FileSystem.h"

namespace Norvik::Host {

namespace {

using Common::OnOneLine;
using std::chrono::milliseconds;

constexpr std::size_t LONGEST_HEADERS = 64 << 10;
constexpr std::size_t LONGEST_FAILURE = 300;
constexpr long SLOWEST_BYTES_PER_SECOND = 1024;

void Check(CURLcode code, const std::string& option) {
  if (code == CURLE_OK) return;
  throw std::runtime_error("libcurl refuses the option " + option + ": " +
                           Curl().easyTextOfError(code));
}

template <class Value>
void Set(CURL* handle, CURLoption option, Value value) {
  Check(Curl().easySetOption(handle, option, value), std::to_string(option));
}

class HeaderList {
 public:
  HeaderList() = default;
  HeaderList(const HeaderList&) = delete;
  HeaderList& operator=(const HeaderList&) = delete;
  ~HeaderList() { Curl().listFree(list_); }

  void Add(const std::string& line) {
    curl_slist* const longer = Curl().listAppend(list_, line.c_str());
    if (!longer) throw std::bad_alloc();
    list_ = longer;
  }
  curl_slist* Get() const { return list_; }

 private:
  curl_slist* list_ = nullptr;
};

/// The request that is being sent, as the callbacks of libcurl see it.
struct Transfer {
  Transfer(const HttpRequest& sent, const std::atomic<bool>& stop, std::size_t limit)
      : request(sent), stopped(stop), answerLimit(limit), fileLeft(sent.fileSize) {
    if (sent.file) fileStart = ::lseek(sent.file->Get(), 0, SEEK_CUR);
  }

  const HttpRequest& request;
  const std::atomic<bool>& stopped;
  const std::size_t answerLimit;
  off_t fileStart = 0;
  std::uint64_t fileLeft;
  std::string answer;
  std::size_t headerBytes = 0;
  std::string failure;  ///< why a callback ended the transfer
  boost::optional<std::chrono::system_clock::time_point> date;
};

// No exception may pass through libcurl, so each callback reports a failure by its return value.

std::size_t ReceiveBody(char* data, std::size_t /*one*/, std::size_t size, void* context) {
  auto& transfer = *static_cast<Transfer*>(context);
  if (transfer.answer.size() + size > transfer.answerLimit) {
    transfer.failure = "the answer is longer than any should be";
    return 0;
  }
  transfer.answer.append(data, size);
  return size;
}

std::size_t ReceiveHeader(char* data, std::size_t /*one*/, std::size_t size, void* context) {
  auto& transfer = *static_cast<Transfer*>(context);
  if (transfer.request.wantsFacts) ReadDateHeader({data, size}, transfer.date);
  transfer.headerBytes += size;
  if (transfer.headerBytes <= LONGEST_HEADERS) return size;
  transfer.failure = "the headers of the answer are longer than any should be";
  return 0;
}

std::size_t ReadFile(char* buffer, std::size_t /*one*/, std::size_t size, void* context) {
  auto& transfer = *static_cast<Transfer*>(context);
  try {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, transfer.fileLeft));
    const std::size_t read = Platform::ReadFull(*transfer.request.file, buffer, wanted);
    transfer.fileLeft -= read;
    if (read == wanted) return read;
    transfer.failure = "the file became shorter";
  } catch (const std::exception& error) {
    transfer.failure = error.what();
  }
  return CURL_READFUNC_ABORT;
}

/// A kept connection may turn out to be dead; the request then starts again on another one.
int SeekFile(void* context, curl_off_t offset, int origin) {
  auto& transfer = *static_cast<Transfer*>(context);
  if (origin != SEEK_SET || offset < 0) return CURL_SEEKFUNC_CANTSEEK;
  const off_t place = transfer.fileStart + static_cast<off_t>(offset);
  if (::lseek(transfer.request.file->Get(), place, SEEK_SET) != place) return CURL_SEEKFUNC_FAIL;
  transfer.fileLeft = transfer.request.fileSize - static_cast<std::uint64_t>(offset);
  return CURL_SEEKFUNC_OK;
}

int CheckStopped(void* context, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  auto& transfer = *static_cast<Transfer*>(context);
  if (!transfer.stopped) return 0;
  transfer.failure = "the agent stops";
  return 1;
}

void SetServer(CURL* handle, const std::string& url, const std::string& scheme,
               const std::string& caFile) {
  Set(handle, CURLOPT_URL, url.c_str());
  const unsigned int version = Curl().versionInfo(CURLVERSION_NOW)->version_num;
  Check(RestrictProtocol(handle, scheme, version), "of protocols");
  Set(handle, CURLOPT_FOLLOWLOCATION, 0L);
  // Ignore proxies from the environment: a service is configured by its configuration only.
  Set(handle, CURLOPT_PROXY, "");
  Set(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  Set(handle, CURLOPT_SSL_VERIFYPEER, 1L);
  Set(handle, CURLOPT_SSL_VERIFYHOST, 2L);
  if (caFile.empty()) return;
  Set(handle, CURLOPT_CAINFO, caFile.c_str());
  // The system's folder of authorities would be trusted, too. The option may be unsupported, so
  // its result is ignored.
  Curl().easySetOption(handle, CURLOPT_CAPATH, nullptr);
}

void SetLimits(CURL* handle, const ServerLimits& limits, std::uint64_t bodySize) {
  const std::chrono::seconds forBody(bodySize / std::max<std::size_t>(limits.bytesPerSecond, 1));
  const auto seconds = std::chrono::ceil<std::chrono::seconds>(limits.request);
  Set(handle, CURLOPT_NOSIGNAL, 1L);
  Set(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits.connect.count()));
  Set(handle, CURLOPT_TIMEOUT_MS, static_cast<long>((limits.request + forBody).count()));
  Set(handle, CURLOPT_LOW_SPEED_LIMIT, SLOWEST_BYTES_PER_SECOND);
  Set(handle, CURLOPT_LOW_SPEED_TIME, static_cast<long>(seconds.count()));
}

void SetBody(CURL* handle, Transfer& transfer) {
  const HttpRequest& request = transfer.request;
  if (request.file) {
    Set(handle, CURLOPT_UPLOAD, 1L);
    Set(handle, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(request.fileSize));
    Set(handle, CURLOPT_READFUNCTION, ReadFile);
    Set(handle, CURLOPT_READDATA, static_cast<void*>(&transfer));
    Set(handle, CURLOPT_SEEKFUNCTION, SeekFile);
    Set(handle, CURLOPT_SEEKDATA, static_cast<void*>(&transfer));
  } else {
    Set(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    Set(handle, CURLOPT_POSTFIELDS, request.body.c_str());
  }
  Set(handle, CURLOPT_CUSTOMREQUEST, request.method.c_str());
}

void SetCallbacks(CURL* handle, Transfer& transfer) {
  Set(handle, CURLOPT_WRITEFUNCTION, ReceiveBody);
  Set(handle, CURLOPT_WRITEDATA, static_cast<void*>(&transfer));
  Set(handle, CURLOPT_HEADERFUNCTION, ReceiveHeader);
  Set(handle, CURLOPT_HEADERDATA, static_cast<void*>(&transfer));
  Set(handle, CURLOPT_NOPROGRESS, 0L);
  Set(handle, CURLOPT_XFERINFOFUNCTION, CheckStopped);
  Set(handle, CURLOPT_XFERINFODATA, static_cast<void*>(&transfer));
}

HttpAnswer Perform(CURL* handle, Transfer& transfer) {
  std::array<char, CURL_ERROR_SIZE> reason{};
  Set(handle, CURLOPT_ERRORBUFFER, reason.data());
  const CURLcode code = Curl().easyPerform(handle);
  Curl().easySetOption(handle, CURLOPT_ERRORBUFFER, nullptr);

  HttpAnswer answer;
  if (transfer.request.wantsFacts) answer.facts = FactsOf(handle, code, transfer.date);
  if (code != CURLE_OK) {
    answer.failure = !transfer.failure.empty() ? transfer.failure
                     : reason.front() != '\0'  ? std::string(reason.data())
                                               : std::string(Curl().easyTextOfError(code));
    return answer;
  }
  Curl().easyGetInfo(handle, CURLINFO_RESPONSE_CODE, &answer.status);
  curl_off_t seconds = 0;
  if (Curl().easyGetInfo(handle, CURLINFO_RETRY_AFTER, &seconds) == CURLE_OK && seconds > 0) {
    answer.retryAfter = std::chrono::seconds(seconds);
  }
  answer.body = std::move(transfer.answer);
  return answer;
}

}  // namespace

std::string HttpAnswer::Text() const {
  if (status != 0) return "answered " + std::to_string(status);
  return "gave no answer (" + OnOneLine(failure).substr(0, LONGEST_FAILURE) + ")";
}

struct HttpClient::Handle {
  Handle() : curl(Curl().easyInit()) {
    if (!curl) throw std::bad_alloc();
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { Curl().easyCleanup(curl); }

  CURL* const curl;
};

HttpClient::HttpClient(const ServerOptions& options, const std::atomic<bool>& stopped)
    : origin_(options.Origin()),
      scheme_(options.scheme),
      caFile_(options.caFile.string()),
      limits_(options.limits),
      stopped_(stopped),
      handle_(std::make_unique<Handle>()) {}

HttpClient::~HttpClient() = default;

HttpAnswer HttpClient::Send(const HttpRequest& request) {
  HttpAnswer answer;
  if (stopped_) {
    answer.failure = "the agent stops";
    return answer;
  }
  try {
    CURL* const handle = handle_->curl;
    Transfer transfer(request, stopped_, limits_.answerBytes);
    HeaderList headers;
    for (const std::string& header : request.headers) headers.Add(header);

    Curl().easyReset(handle);
    SetServer(handle, origin_ + request.path, scheme_, caFile_);
    SetLimits(handle, limits_, request.file ? request.fileSize : request.body.size());
    SetBody(handle, transfer);
    SetCallbacks(handle, transfer);
    // Not every TLS library has it.
    if (request.wantsFacts) Curl().easySetOption(handle, CURLOPT_CERTINFO, 1L);
    Set(handle, CURLOPT_HTTPHEADER, headers.Get());
    answer = Perform(handle, transfer);
    // The handle must not keep pointers to objects of this scope.
    Curl().easyReset(handle);
  } catch (const std::runtime_error& error) {
    answer.failure = error.what();
  }
  return answer;
}

}  // namespace Norvik::Host
