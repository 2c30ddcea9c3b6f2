#include "host/server/ConnectionFacts.h"

#include <strings.h>

#include <algorithm>

#include "common/text/Dates.h"
#include "host/server/CurlLibrary.h"

namespace Norvik::Host {

namespace {

using std::chrono::system_clock;
using Time = boost::optional<system_clock::time_point>;

constexpr std::string_view DATE = "Date:";
constexpr std::string_view EXPIRES = "Expire date:";

bool Lasted(CURL* handle, CURLINFO phase) {
  curl_off_t microseconds = 0;
  return Curl().easyGetInfo(handle, phase, &microseconds) == CURLE_OK && microseconds > 0;
}

/// Some releases count the TLS handshake into the time of the connection.
bool IsConnected(CURL* handle) {
  long port = 0;
  Curl().easyGetInfo(handle, CURLINFO_LOCAL_PORT, &port);
  return port > 0 || Lasted(handle, CURLINFO_CONNECT_TIME_T);
}

ConnectionFacts::Stage StageOf(CURL* handle, CURLcode code) {
  long status = 0;
  Curl().easyGetInfo(handle, CURLINFO_RESPONSE_CODE, &status);
  if (status != 0) return ConnectionFacts::ANSWERED;
  if (code == CURLE_PEER_FAILED_VERIFICATION || code == CURLE_SSL_CONNECT_ERROR ||
      code == CURLE_SSL_CACERT_BADFILE) {
    return ConnectionFacts::CONNECTED;
  }
  if (Lasted(handle, CURLINFO_APPCONNECT_TIME_T)) return ConnectionFacts::TRUSTED;
  if (IsConnected(handle)) {
    const char* scheme = nullptr;
    Curl().easyGetInfo(handle, CURLINFO_SCHEME, &scheme);
    const bool isPlain = scheme && ::strcasecmp(scheme, "http") == 0;
    return isPlain ? ConnectionFacts::TRUSTED : ConnectionFacts::CONNECTED;
  }
  const bool isResolved =
      code == CURLE_COULDNT_CONNECT || Lasted(handle, CURLINFO_NAMELOOKUP_TIME_T);
  return isResolved ? ConnectionFacts::NAME_RESOLVED : ConnectionFacts::NOTHING;
}

/// The earliest of the chain.
Time EarliestExpiry(CURL* handle) {
  Time earliest;
  curl_certinfo* chain = nullptr;
  if (Curl().easyGetInfo(handle, CURLINFO_CERTINFO, &chain) != CURLE_OK || !chain) return earliest;
  for (int i = 0; i < chain->num_of_certs; ++i) {
    for (const curl_slist* line = chain->certinfo[i]; line; line = line->next) {
      const std::string_view text = line->data;
      if (text.substr(0, EXPIRES.size()) != EXPIRES) continue;
      const Time expires = ExpiryOf(std::string(text.substr(EXPIRES.size())));
      if (expires && (!earliest || *expires < *earliest)) earliest = expires;
    }
  }
  return earliest;
}

}  // namespace

ConnectionFacts FactsOf(CURL* handle, CURLcode code, const Time& date) {
  ConnectionFacts facts;
  facts.reached = StageOf(handle, code);
  facts.outOfTime = code == CURLE_OPERATION_TIMEDOUT;
  facts.expires = EarliestExpiry(handle);
  facts.date = date;
  return facts;
}

void ReadDateHeader(std::string_view line, Time& date) noexcept {
  if (line.size() < DATE.size() || ::strncasecmp(line.data(), DATE.data(), DATE.size()) != 0)
    return;
  char text[64] = {};
  line.substr(DATE.size()).copy(text, sizeof(text) - 1);
  const std::time_t time = Curl().getDate(text, nullptr);
  if (time > 0) date = system_clock::from_time_t(time);
}

Time ExpiryOf(const std::string& text) {
  for (const char* format : {"%b %d %H:%M:%S %Y GMT", "%Y-%m-%d %H:%M:%S GMT"}) {
    const auto time = Common::UTCStringToTimePoint(text, format);
    if (time != system_clock::time_point()) return time;
  }
  return boost::none;
}

}  // namespace Norvik::Host
