#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <functional>
#include <string>

#include "common/database/Sqlite.h"

namespace Norvik::Common {

/// One connection to the database file, for one thread at a time. Members throw `soci::soci_error`,
/// for errors of SQLite the subclass `SqliteError`, unless they say otherwise. A statement that
/// another connection blocks waits for it, a minute at most, and then fails.
class Connection {
 public:
  using WaitListener = std::function<void()>;

  /// Opens the file, or creates it. Does not read it yet. Throws `std::runtime_error` if two copies
  /// of SQLite are in this process.
  explicit Connection(const boost::filesystem::path& file);
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() = default;

  /// Sets a function that is called, on the waiting thread, when any connection of this process has
  /// waited for a second. It must neither throw nor use the database. An empty function removes it.
  static void SetWaitListener(WaitListener listener);

  /// From here on the file is not changed: statements that write are refused, and the write-ahead
  /// log of an agent that was killed stays for its next start.
  /// @param hasLog whether the log existed before the first connection, which creates one
  void OnlyRead(bool hasLog);

  /// Applies the settings of every connection. Only for a file that is known to be undamaged.
  void Configure();

  /// SQLite's handle; valid as long as this object.
  sqlite_api::sqlite3* Handle() const { return handle_; }

  /// Runs statements, separated by semicolons, that return no rows.
  void ExecuteScript(const std::string& script);

  /// Begins a transaction that writes, after waiting for other writers. SQLite may end the
  /// transaction by itself after an error: `InTransaction` says whether it is still open.
  void Begin() { ExecuteScript("BEGIN IMMEDIATE"); }
  void Commit() { ExecuteScript("COMMIT"); }
  bool InTransaction() const { return sqlite_api::sqlite3_get_autocommit(handle_) == 0; }
  /// Ends an open transaction without its changes. True if no transaction is open afterwards.
  bool Rollback() noexcept;

  /// Whether closing the last connection to the file may move the write-ahead log into it.
  void CheckpointOnClose(bool allowed);

  /// Throws the last error of SQLite on this connection; the text ends with the statement.
  [[noreturn]] void ThrowLastError(int code, const std::string& statement) const;

 private:
  static int OnBusy(void* connection, int earlierCalls);
  bool Wait(bool begins);

  std::chrono::steady_clock::time_point waitingSince_;
  bool hasNotified_ = false;
  soci::session session_;
  sqlite_api::sqlite3* handle_;
};

}  // namespace Norvik::Common
