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

/// Of those in the four hundreds that speak of the agent or of the server's state and not of what
/// was sent: unauthorized, request timeout, too early, too many requests.
constexpr long OF_THE_MOMENT[] = {401, 408, 425, 429};

Result ResultOf(long status) {
  const bool ofTheMoment = std::find(std::begin(OF_THE_MOMENT), std::end(OF_THE_MOMENT), status) !=
                           std::end(OF_THE_MOMENT);
  return status >= 400 && status < 500 && !ofTheMoment ? Result::Refused : Result::ServerFailed;
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
