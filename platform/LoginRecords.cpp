#include "platform/LoginRecords.h"

namespace Norvik::Platform {

namespace {

std::mutex& WalkLock() {
  static std::mutex lock;
  return lock;
}

}  // namespace

LoginRecords::LoginRecords() : lock_(WalkLock()) { ::setutxent(); }

LoginRecords::~LoginRecords() { ::endutxent(); }

const utmpx* LoginRecords::Next() {
  if (!recorded_) return ::getutxent();
  return position_ < recorded_->logins.size() ? &recorded_->logins[position_++] : nullptr;
}

}  // namespace Norvik::Platform
