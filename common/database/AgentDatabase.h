#pragma once

#include <boost/filesystem/path.hpp>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "common/Api.h"
#include "common/database/IDataBase.h"

namespace Norvik::Common {

namespace SQLiteNames {

inline constexpr char SQLITE_CURRENT_DATABASE_NAME[] = "Agent.9.24.2.0.sqlite3";
inline constexpr char SQLITE_SHARED_MEMORY_FILE[] = "Agent.9.24.2.0.sqlite3-shm";
inline constexpr char SQLITE_WRITE_AHEAD_LOG_FILE[] = "Agent.9.24.2.0.sqlite3-wal";

}  // namespace SQLiteNames

/// The process's agent database: opens the file, brings its schema up to date, and serves every
/// `V2::DataBase` while it lives. One at a time in a process; make it before the module is loaded
/// and destroy it after.
class NORVIK_COMMON_API AgentDatabase : public IDataBase {
 public:
  enum class Access { ReadWrite, ReadOnly };

  /// Opens or creates the database file in the folder, which must exist.
  ///
  /// A file that is no database or whose content is damaged is renamed to its name with
  /// ".corrupt-" and the time behind it, together with its -wal and -shm files, and
  /// `CorruptDatabaseError` is raised, so that nobody goes on with an empty database unawares; the
  /// next call makes a fresh one. Raises `std::runtime_error` for any other failure, a newer
  /// schema among them.
  ///
  /// `ReadOnly` takes a file that is there, beside its agent or without one, and leaves it as and
  /// where it is, damaged or not; an older schema may then lack tables.
  explicit AgentDatabase(const boost::filesystem::path& folder, Access access = Access::ReadWrite);
  AgentDatabase(const AgentDatabase&) = delete;
  AgentDatabase& operator=(const AgentDatabase&) = delete;
  ~AgentDatabase() override;

  std::unique_ptr<DbResponseTable> GetTable(const std::string& name, int offset, int limit,
                                            int order) override;

  /// Is called on the waiting thread when something of this process has waited for a second for
  /// another process to let go of the database; the wait ends in an error after a minute. Must not
  /// raise, nor use the database. Empty: nobody is told.
  static void SetWaitListener(std::function<void()> listener);

  /// Has SQLite leave out its lock around each row and cell. Only for a process that uses no
  /// connection of its own on two threads at once (those here never are), and before its first use
  /// of SQLite. False if it is too late.
  static bool LeaveOutConnectionLocks();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// The database file was damaged and has been put aside.
class NORVIK_COMMON_API CorruptDatabaseError : public std::runtime_error {
 public:
  CorruptDatabaseError(const std::string& text, boost::filesystem::path keptAs);
  ~CorruptDatabaseError() override;
  const boost::filesystem::path& KeptAs() const { return keptAs_; }

 private:
  boost::filesystem::path keptAs_;
};

/// Copies an agent database as it stands at one moment, even while an agent writes to it; the
/// source is only read. Throws a subclass of `std::exception` if there is no source or it is
/// damaged.
NORVIK_COMMON_API void CopyDatabase(const boost::filesystem::path& source,
                                    const boost::filesystem::path& target);

}  // namespace Norvik::Common
