#pragma once

#include <curl/curl.h>

#include <string>

namespace Norvik::Host {

/// Whether a libcurl takes the protocols of requests by their names; an older one takes them as
/// bits.
/// @param version as `curl_version_info` has it: of the library in use, not of its headers
bool TakesProtocolNames(unsigned int version);

/// Restricts the requests of a handle to one protocol, "http" or "https". Returns libcurl's result.
CURLcode RestrictProtocol(CURL* handle, const std::string& scheme, unsigned int version);

}  // namespace Norvik::Host
