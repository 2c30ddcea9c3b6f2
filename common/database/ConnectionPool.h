#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "common/database/Connection.h"

namespace Norvik::Common {

/// The connections of this process to its database file: one for each object that is at work, and
/// a few kept open for the next. Safe on any thread.
class ConnectionPool {
 public:
  using Connect = std::function<std::unique_ptr<Connection>()>;

  /// @param connect makes a connection that is ready for use
  /// @param first   one that is made already
  ConnectionPool(Connect connect, std::unique_ptr<Connection> first);

  /// Raises what opening a connection raises.
  std::unique_ptr<Connection> Take();
  /// Takes a connection back, whatever its state: an open transaction is rolled back.
  void Return(std::unique_ptr<Connection> connection) noexcept;
  /// Closes the idle connections, and those at work as they come back.
  void Close() noexcept;

  /// The pool of the process. Raises `std::runtime_error` if no database is open.
  static std::shared_ptr<ConnectionPool> Current();
  /// Raises `std::runtime_error` if the process has a pool already.
  static void Install(std::shared_ptr<ConnectionPool> pool);
  static void Uninstall() noexcept;
  /// Whether more than one connection of the process's pool is at work.
  static bool IsContended() noexcept;

 private:
  std::unique_ptr<Connection> TakeIdle();

  const Connect connect_;
  std::atomic<int> atWork_{0};
  std::mutex mutex_;
  std::vector<std::unique_ptr<Connection>> idle_;
  bool closed_ = false;
};

}  // namespace Norvik::Common
