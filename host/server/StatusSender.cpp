#include "host/server/StatusSender.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <string>
#include <utility>
#include <vector>

namespace Norvik::Host {

namespace {

constexpr long TOO_LARGE = 413;

std::string BodyOf(const std::vector<WaitingStatus>& statuses) {
  std::string list;
  for (const WaitingStatus& status : statuses) list += (list.empty() ? "" : ",") + status.json;
  return "{\"statuses\":[" + list + "]}";
}

}  // namespace

StatusSender::StatusSender(std::shared_ptr<ServerSession> session,
                           std::shared_ptr<StatusQueue> queue)
    : session_(std::move(session)), queue_(std::move(queue)) {}

Attempt StatusSender::SendBatch(HttpClient& client) {
  const auto statuses = queue_->First(batch_);
  const HttpAnswer answer = session_->Post(client, "statuses", BodyOf(statuses));
  if (answer.status == TOO_LARGE) batch_ = std::max<std::size_t>(1, statuses.size() / 2);
  return AttemptOf(answer, [&](const boost::property_tree::ptree& body) {
    const auto id = body.get<std::string>("acknowledged");
    const bool isOurs = std::any_of(statuses.begin(), statuses.end(),
                                    [&](const WaitingStatus& status) { return status.id == id; });
    return isOurs && queue_->DropThrough(id);
  });
}

Attempt StatusSender::Send(HttpClient& client) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Attempt attempt;
  while (attempt.result == Attempt::Result::Acknowledged && !queue_->IsEmpty()) {
    attempt = SendBatch(client);
  }
  return attempt;
}

}  // namespace Norvik::Host
