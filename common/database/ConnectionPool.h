#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "common/database/Connection.h"

namespace Norvik::Common {

/// The connections of this process to its database file: one for each object that uses it now, and
/// a few idle ones for the next. Any thread may call.
class ConnectionPool {
 public:
  using Connect = std::function<std::unique_ptr<Connection>()>;

  /// @param connect opens a connection that is ready for use
  /// @param first   a connection that is already open
  ConnectionPool(Connect connect, std::unique_ptr<Connection> first);

  /// An idle connection, or a new one. Throws what opening a connection throws.
  std::unique_ptr<Connection> Take();
  /// Takes a connection back, in any state: an open transaction is rolled back.
  void Return(std::unique_ptr<Connection> connection) noexcept;
  /// Closes the idle connections now, and those in use when they are returned.
  void Close() noexcept;

  /// The pool of the process. Throws `std::runtime_error` if no database is open.
  static std::shared_ptr<ConnectionPool> Current();
  /// Makes a pool that of the process. Throws `std::runtime_error` if there is one already.
  static void Install(std::shared_ptr<ConnectionPool> pool);
  /// Closes and removes the pool of the process. Objects that use a connection keep it alive.
  static void Uninstall() noexcept;
  /// Whether more than one connection of the process's pool is in use.
  static bool IsContended() noexcept;

 private:
  std::unique_ptr<Connection> TakeIdle();

  const Connect connect_;
  std::atomic<int> inUse_{0};
  std::mutex mutex_;
  std::vector<std::unique_ptr<Connection>> idle_;
  bool closed_ = false;
};

}  // namespace Norvik::Common
