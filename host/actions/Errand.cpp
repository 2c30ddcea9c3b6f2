#include "host/actions/Errand.h"

#include <atomic>
#include <utility>

namespace Norvik::Host {

namespace {

thread_local std::shared_ptr<Errand> currentErrand;
thread_local std::uint64_t currentAction = 0;

std::uint64_t NextAction() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

}  // namespace

Errand::~Errand() = default;

std::shared_ptr<Errand> Errand::Current() { return currentErrand; }

std::uint64_t Errand::CurrentAction() { return currentAction; }

ErrandScope::ErrandScope(std::shared_ptr<Errand> errand)
    : ErrandScope(std::move(errand), NextAction()) {}

ErrandScope::ErrandScope(std::shared_ptr<Errand> errand, std::uint64_t action)
    : outerErrand_(std::exchange(currentErrand, std::move(errand))),
      outerAction_(std::exchange(currentAction, action)) {}

ErrandScope::~ErrandScope() {
  currentErrand = std::move(outerErrand_);
  currentAction = outerAction_;
}

}  // namespace Norvik::Host
