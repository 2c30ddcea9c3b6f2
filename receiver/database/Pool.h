#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "receiver/database/Session.h"

namespace Norvik::Receiver {

/// Connections that are not in use. Safe on any thread.
class Pool {
 public:
  explicit Pool(std::string database) : database_(std::move(database)) {}

  /// Calls `action(session)` and returns what it returns. A connection is used again only if
  /// nothing was thrown.
  template <class Action>
  auto With(Action action) {
    Lease lease{*this, Take()};
    if constexpr (std::is_void_v<decltype(action(*lease.session))>) {
      action(*lease.session);
      lease.isGood = true;
    } else {
      auto result = action(*lease.session);
      lease.isGood = true;
      return result;
    }
  }

 private:
  struct Lease {
    Pool& pool;
    std::unique_ptr<Session> session;
    bool isGood = false;
    ~Lease() {
      if (isGood) pool.Return(std::move(session));
    }
  };

  std::unique_ptr<Session> Take();
  void Return(std::unique_ptr<Session> session);

  const std::string database_;
  std::mutex mutex_;
  std::vector<std::unique_ptr<Session>> unused_;
};

}  // namespace Norvik::Receiver
