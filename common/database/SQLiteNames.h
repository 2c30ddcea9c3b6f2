#pragma once

namespace Norvik::Common::SQLiteNames {

inline constexpr char SQLITE_CURRENT_DATABASE_NAME[] = "Agent.9.24.2.0.sqlite3";
inline constexpr char SQLITE_SHARED_MEMORY_FILE[] = "Agent.9.24.2.0.sqlite3-shm";
inline constexpr char SQLITE_WRITE_AHEAD_LOG_FILE[] = "Agent.9.24.2.0.sqlite3-wal";

}  // namespace Norvik::Common::SQLiteNames
