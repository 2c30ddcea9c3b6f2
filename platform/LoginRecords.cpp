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

const utmpx* LoginRecords::Next() { return ::getutxent(); }

}  // namespace Norvik::Platform
