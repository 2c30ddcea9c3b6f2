#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>
#include <mutex>
#include <vector>

#include "common/database/Connection.h"

namespace Norvik::Common {

/// The connections of this process to its database file: one for each object that is at work, and
/// a few kept open for the next. Safe on any thread.
class ConnectionPool {
 public:
  /// @param first a connection to the file that is open and configured already
  ConnectionPool(boost::filesystem::path file, std::unique_ptr<Connection> first);

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

 private:
  const boost::filesystem::path file_;
  std::mutex mutex_;
  std::vector<std::unique_ptr<Connection>> idle_;
  bool closed_ = false;
};

}  // namespace Norvik::Common
