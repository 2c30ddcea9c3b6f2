#pragma once

#include <boost/optional.hpp>
#include <boost/property_tree/ptree_fwd.hpp>
#include <chrono>
#include <functional>
#include <string>

#include "host/server/HttpClient.h"

namespace Norvik::Host {

/// What became of something that was sent to be kept by the server.
struct Attempt {
  enum class Result {
    Acknowledged,
    Refused,       ///< the server works, but does not take just this
    ServerFailed,  ///< nothing else would fare better now
  };

  Result result = Result::Acknowledged;
  std::string reason;  ///< why not, as "answered 500"
  boost::optional<std::chrono::seconds> retryAfter;
};

/// @param acknowledges whether the body of an answer says that the server has what was sent; may
///        raise what a missing or wrong value raises
Attempt AttemptOf(const HttpAnswer& answer,
                  const std::function<bool(const boost::property_tree::ptree&)>& acknowledges);

}  // namespace Norvik::Host
