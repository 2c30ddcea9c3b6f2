#pragma once

// SOCI puts SQLite's C interface into a namespace of its own: a source that includes this header
// cannot include the plain <sqlite3.h>.
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <functional>
#include <string>

namespace Norvik::Common {

/// One connection to the database file. Use it on one thread at a time. Every member raises
/// `soci::soci_error` on failure, the ones of SQLite as `soci::sqlite3_soci_error`. What another
/// connection is in the way of waits for it, a minute at most.
class Connection {
 public:
  using WaitListener = std::function<void()>;

  /// Opens the file, or creates it. Reads nothing of it yet.
  explicit Connection(const boost::filesystem::path& file);
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() = default;

  /// Is called on the waiting thread when a connection of this process has waited for a second.
  /// Must not raise, nor use the database. Empty: nobody is told.
  static void SetWaitListener(WaitListener listener);

  /// Leaves the file as it is from here on: statements that write are refused, and the log of an
  /// agent that has died stays for its next start.
  /// @param hasLog the file had one before the first connection was made
  void OnlyRead(bool hasLog);

  /// Sets what holds for each connection to a file that is known to be sound.
  void Configure();

  sqlite_api::sqlite3* Handle() const { return handle_; }

  /// Runs statements, separated by semicolons, that return no rows.
  void ExecuteScript(const std::string& script);

  /// Takes the right to write at once, waiting for other writers. SQLite itself may end the
  /// transaction after an error, so ask `InTransaction`.
  void Begin() { ExecuteScript("BEGIN IMMEDIATE"); }
  void Commit() { ExecuteScript("COMMIT"); }
  bool InTransaction() const { return sqlite_api::sqlite3_get_autocommit(handle_) == 0; }
  /// True if no transaction is open afterwards.
  bool Rollback() noexcept;

  /// Whether closing the last connection to the file may move the write-ahead log into it.
  void CheckpointOnClose(bool allowed);

  /// Raises SQLite's last error on this connection.
  [[noreturn]] void RaiseLastError(int code, const std::string& statement) const;

 private:
  static int OnBusy(void* connection, int earlierCalls);
  bool Wait(bool begins);

  std::chrono::steady_clock::time_point waitingSince_;
  bool hasToldOfWait_ = false;
  soci::session session_;
  sqlite_api::sqlite3* handle_;
};

}  // namespace Norvik::Common
