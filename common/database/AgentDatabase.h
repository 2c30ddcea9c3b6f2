#pragma once

#include <boost/filesystem/path.hpp>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "common/Api.h"
#include "common/database/IDataBase.h"

namespace Norvik::Common {

/// Names of the database file in the data folder, and of the two files that SQLite puts beside it.
namespace SQLiteNames {

inline constexpr char SQLITE_CURRENT_DATABASE_NAME[] = "Agent.9.24.2.0.sqlite3";
inline constexpr char SQLITE_SHARED_MEMORY_FILE[] = "Agent.9.24.2.0.sqlite3-shm";
inline constexpr char SQLITE_WRITE_AHEAD_LOG_FILE[] = "Agent.9.24.2.0.sqlite3-wal";

}  // namespace SQLiteNames

/// The agent database of the process: opens the file, brings its schema up to date, and gives every
/// `V2::DataBase` its connection. At most one object exists in a process at a time. Create it
/// before the module is loaded and destroy it after the module is deleted. Any thread may call
/// `GetTable`.
class NORVIK_COMMON_API AgentDatabase : public IDataBase {
 public:
  enum class Access { ReadWrite, ReadOnly };

  /// Opens or creates the database file in the folder, which must exist.
  ///
  /// A file that is no database, or a damaged one, is renamed to its name plus ".corrupt-" and the
  /// time, together with its -wal and -shm files, and `CorruptDatabaseError` is thrown, so that no
  /// caller continues with an empty database without knowing it. The next call creates a new file.
  /// Every other failure, such as a schema of a newer version, throws `std::runtime_error` and
  /// changes nothing.
  ///
  /// `ReadOnly` opens an existing file, whether an agent uses it or not, and never changes or
  /// renames it. An older schema may then lack tables.
  explicit AgentDatabase(const boost::filesystem::path& folder, Access access = Access::ReadWrite);
  AgentDatabase(const AgentDatabase&) = delete;
  AgentDatabase& operator=(const AgentDatabase&) = delete;
  ~AgentDatabase() override;

  std::unique_ptr<DbResponseTable> GetTable(const std::string& name, int offset, int limit,
                                            int order) override;

  /// Sets a function that is called when this process has waited for a second because another
  /// process uses the database; after a minute the wait ends with an error. It is called on the
  /// waiting thread and must neither throw nor use the database. An empty function removes it.
  static void SetWaitListener(std::function<void()> listener);

  /// Switches off SQLite's own lock around each row and cell, and its count of the memory in use,
  /// which has a lock for all connections: both cost time. Call it before the process uses SQLite,
  /// and only if no connection is used by two threads at once; the connections here are not. False
  /// if SQLite is already in use.
  static bool LeaveOutConnectionLocks();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// The database file was damaged and has been renamed.
class NORVIK_COMMON_API CorruptDatabaseError : public std::runtime_error {
 public:
  CorruptDatabaseError(const std::string& text, boost::filesystem::path keptAs);
  ~CorruptDatabaseError() override;
  /// The new name of the damaged file.
  const boost::filesystem::path& KeptAs() const { return keptAs_; }

 private:
  boost::filesystem::path keptAs_;
};

/// Copies an agent database as it is at one moment, even while an agent writes to it; the
/// source is only read. Throws a subclass of `std::exception` if there is no source or it is
/// damaged.
NORVIK_COMMON_API void CopyDatabase(const boost::filesystem::path& source,
                                    const boost::filesystem::path& target);

}  // namespace Norvik::Common
