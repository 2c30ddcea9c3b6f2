#include "host/server/CurlProtocol.h"

#include "host/server/CurlLibrary.h"

namespace Norvik::Host {

namespace {

// By their numbers: older headers lack the second name, and newer ones mark the first as
// deprecated.
constexpr auto PROTOCOL_BITS = static_cast<CURLoption>(CURLOPTTYPE_LONG + 181);
constexpr auto PROTOCOL_NAMES = static_cast<CURLoption>(CURLOPTTYPE_OBJECTPOINT + 318);
constexpr unsigned int FIRST_WITH_NAMES = 0x075500;  // 7.85.0

}  // namespace

bool TakesProtocolNames(unsigned int version) { return version >= FIRST_WITH_NAMES; }

CURLcode RestrictProtocol(CURL* handle, const std::string& scheme, unsigned int version) {
  if (TakesProtocolNames(version))
    return Curl().easySetOption(handle, PROTOCOL_NAMES, scheme.c_str());
  const long bits = scheme == "https" ? CURLPROTO_HTTPS : CURLPROTO_HTTP;
  return Curl().easySetOption(handle, PROTOCOL_BITS, bits);
}

}  // namespace Norvik::Host
