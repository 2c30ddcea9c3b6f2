#pragma once

#include <boost/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <chrono>
#include <functional>
#include <string>

#include "host/server/HttpClient.h"

namespace Norvik::Host {

/// The outcome of sending something that the server has to store.
struct Attempt {
  enum class Result {
    Acknowledged,
    Refused,       ///< the server works, but does not accept this item
    ServerFailed,  ///< any other item would fail now, too
  };

  Result result = Result::Acknowledged;
  std::string reason;  ///< of a failure, without a subject: "answered 500"
  boost::optional<std::chrono::seconds> retryAfter;  ///< the wait that the server requests
};

/// The outcome that an answer reports.
/// @param acknowledges returns whether the body of a successful answer says that the server has
///        stored what was sent; may throw for a missing or invalid value
Attempt AttemptOf(const HttpAnswer& answer,
                  const std::function<bool(const boost::property_tree::ptree&)>& acknowledges);

}  // namespace Norvik::Host
