#include "host/server/Attempt.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <exception>
#include <stdexcept>

#include "common/text/Text.h"
#include "host/server/AnswerBody.h"

namespace Norvik::Host {

namespace {

using Common::OnOneLine;
using Result = Attempt::Result;

/// The 4xx statuses that concern the agent or the server's state and not what was sent:
/// unauthorized, request timeout, too early, too many requests.
constexpr long TEMPORARY[] = {401, 408, 425, 429};

Result ResultOf(long status) {
  const bool isTemporary =
      std::find(std::begin(TEMPORARY), std::end(TEMPORARY), status) != std::end(TEMPORARY);
  return status >= 400 && status < 500 && !isTemporary ? Result::Refused : Result::ServerFailed;
}

}  // namespace

Attempt AttemptOf(const HttpAnswer& answer,
                  const std::function<bool(const boost::property_tree::ptree&)>& acknowledges) {
  if (!answer.IsSuccess()) return {ResultOf(answer.status), answer.Text(), answer.retryAfter};
  try {
    if (acknowledges(ParseAnswerBody(answer.body))) return {};
    throw std::runtime_error("it does not acknowledge what was sent");
  } catch (const std::exception& error) {
    return {Result::ServerFailed, answer.Text() + ", but " + OnOneLine(error.what()),
            answer.retryAfter};
  }
}

}  // namespace Norvik::Host
