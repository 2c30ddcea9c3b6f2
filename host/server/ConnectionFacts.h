#pragma once

#include <curl/curl.h>

#include <string_view>

#include "host/server/HttpClient.h"

namespace Norvik::Host {

/// What a handle knows after a request.
/// @param code result of the request
/// @param date see `ReadDateHeader`
ConnectionFacts FactsOf(CURL* handle, CURLcode code,
                        const boost::optional<std::chrono::system_clock::time_point>& date);

/// Keeps the time of a header line "Date: ..."; any other line changes nothing. Throws nothing.
void ReadDateHeader(std::string_view line,
                    boost::optional<std::chrono::system_clock::time_point>& date) noexcept;

/// The time in the "Expire date" of a certificate, in the words of any TLS library; empty for
/// another text.
boost::optional<std::chrono::system_clock::time_point> ExpiryOf(const std::string& text);

}  // namespace Norvik::Host
