#include "host/actions/SerialActions.h"

#include <utility>

namespace Norvik::Host {

using namespace Common;

namespace {

/// Calls a function at the end of a scope, even if an exception ends it.
class AtEnd {
 public:
  explicit AtEnd(std::function<void()> call) : call_(std::move(call)) {}
  AtEnd(const AtEnd&) = delete;
  AtEnd& operator=(const AtEnd&) = delete;
  ~AtEnd() { call_(); }

 private:
  const std::function<void()> call_;
};

}  // namespace

SerialActions::SerialActions(std::weak_ptr<ActionSystem> system) : system_(std::move(system)) {}

void SerialActions::Add(unsigned int code, ModuleAction action, std::function<void()> done) {
  Item item{code, std::move(action), std::move(done)};
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (busy_) {
      waiting_.push_back(std::move(item));
      return;
    }
    busy_ = true;
  }
  Start(std::move(item));
}

void SerialActions::Start(Item item) {
  const auto system = system_.lock();
  if (!system) return;
  ModuleAction step = item.action;
  step.handler = [self = shared_from_this(), handler = std::move(item.action.handler),
                  done = std::move(item.done)](ActionParameters& parameters) {
    const AtEnd next([&] {
      done();
      self->StartNext();
    });
    return handler(parameters);
  };
  system->RunInLane(Lane::Users, item.code, std::move(step));
}

void SerialActions::StartNext() {
  Item item;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    busy_ = !waiting_.empty();
    if (!busy_) return;
    item = std::move(waiting_.front());
    waiting_.pop_front();
  }
  Start(std::move(item));
}

}  // namespace Norvik::Host
