#include "host/server/AnswerSender.h"

#include <boost/property_tree/ptree.hpp>
#include <string>
#include <utility>

namespace Norvik::Host {

AnswerSender::AnswerSender(std::shared_ptr<ServerSession> session,
                           std::shared_ptr<AnswerQueue> queue)
    : session_(std::move(session)), queue_(std::move(queue)) {}

Attempt AnswerSender::SendOne(HttpClient& client, const WaitingAnswer& answer) {
  const auto text = queue_->Read(answer);
  if (!text) return {};
  Attempt attempt = AttemptOf(session_->Post(client, "answers", *text),
                              [&](const boost::property_tree::ptree& body) {
                                return body.get<std::string>("acknowledged") == answer.id;
                              });
  if (attempt.result == Attempt::Result::Acknowledged) queue_->Remove(answer.id);
  return attempt;
}

Attempt AnswerSender::Send(HttpClient& client) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Attempt attempt;
  while (attempt.result == Attempt::Result::Acknowledged) {
    const auto answer = queue_->First();
    if (!answer) break;
    attempt = SendOne(client, *answer);
  }
  isRefused_ = attempt.result == Attempt::Result::Refused;
  return attempt;
}

}  // namespace Norvik::Host
