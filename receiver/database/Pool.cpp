#include "receiver/database/Pool.h"

#include <utility>

namespace Norvik::Receiver {

std::unique_ptr<Session> Pool::Take() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!unused_.empty()) {
      auto session = std::move(unused_.back());
      unused_.pop_back();
      return session;
    }
  }
  return std::make_unique<Session>(database_);
}

void Pool::Return(std::unique_ptr<Session> session) {
  const std::lock_guard<std::mutex> lock(mutex_);
  unused_.push_back(std::move(session));
}

}  // namespace Norvik::Receiver
