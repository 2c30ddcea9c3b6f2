#include "common/database/DatabaseExamination.h"

#include <boost/filesystem/operations.hpp>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

#include "common/database/AgentData.h"
#include "common/database/AgentDatabase.h"
#include "common/database/DatabaseSchema.h"
#include "common/database/Statement.h"

namespace Norvik::Common {

namespace {

namespace fs = boost::filesystem;
using State = DatabaseExamination::State;
using std::chrono::steady_clock;

constexpr int BUSY_MILLISECONDS = 300;
constexpr int STEPS_BETWEEN_CHECKS = 5000;  ///< of SQLite's machine, well below a millisecond

int IsLate(void* end) { return steady_clock::now() > *static_cast<steady_clock::time_point*>(end); }

/// Ends what a connection runs at a point in time. SQLite asks `IsLate` between the steps of a
/// statement, but the check of a tree is a single step, which only an interrupt ends.
class Deadline {
 public:
  Deadline(Connection& connection, steady_clock::time_point end)
      : end_(end), thread_([this, &connection] {
          std::unique_lock<std::mutex> lock(mutex_);
          if (changed_.wait_until(lock, end_, [this] { return isDone_; })) return;
          sqlite_api::sqlite3_interrupt(connection.Handle());
        }) {
    sqlite_api::sqlite3_progress_handler(connection.Handle(), STEPS_BETWEEN_CHECKS, IsLate, &end_);
  }
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;
  ~Deadline() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      isDone_ = true;
    }
    changed_.notify_all();
    thread_.join();
  }

 private:
  steady_clock::time_point end_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool isDone_ = false;
  std::thread thread_;
};

/// Version and rows come first: the check of a large file may not end in time.
void Read(Connection& connection, DatabaseExamination& found) {
  found.schemaVersion =
      boost::get<int>(Statement(connection, "PRAGMA user_version").Run({}).at(0).at(0));
  const auto tables =
      Statement(connection, "select 1 from sqlite_master where name = 'DATA'").Run({});
  if (!tables.empty()) {
    const std::string rows = std::string("select name, value from ") + AGENT_DATA_TABLE;
    const auto table = Statement(connection, rows).RunAsTable({});
    if (table) {
      for (const auto& row : table->rows) found.data[row.at(0)] = row.at(1);
    }
  }
  const auto finding = Statement(connection, "PRAGMA quick_check(1)").Run({});
  found.problem = boost::get<std::string>(finding.at(0).at(0));
  if (found.problem == "ok") found.problem.clear();
  found.state = found.problem.empty() ? State::SOUND : State::DAMAGED;
}

void Fail(const SqliteError& error, DatabaseExamination& found) {
  found.problem = sqlite_api::sqlite3_errstr(error.Code());
  switch (error.Code()) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      found.state = State::DAMAGED;
      break;
    case SQLITE_INTERRUPT:
      found.state = State::UNFINISHED;
      break;
    default:
      found.state = State::UNREADABLE;
  }
}

}  // namespace

DatabaseExamination ExamineDatabase(const fs::path& folder, std::chrono::milliseconds limit) {
  const auto end = steady_clock::now() + limit;
  const fs::path file = folder / SQLiteNames::SQLITE_CURRENT_DATABASE_NAME;
  DatabaseExamination found;
  found.schemaVersion = -1;
  found.newestVersion = NewestSchemaVersion();
  try {
    if (!fs::exists(file)) return found;
    found.state = State::UNREADABLE;
    if (fs::exists(file.string() + "-journal")) {
      found.problem = "it is not finished; the next start of an agent does that";
      return found;
    }
    // Asked before the first connection, which makes one.
    const bool hasLog = fs::exists(file.string() + "-wal");
    Connection connection(file);
    connection.OnlyRead(hasLog);
    sqlite_api::sqlite3_busy_timeout(connection.Handle(), BUSY_MILLISECONDS);
    const Deadline deadline(connection, end);
    Read(connection, found);
  } catch (const SqliteError& error) {
    Fail(error, found);
  } catch (const fs::filesystem_error& error) {
    found.state = State::UNREADABLE;
    found.problem = error.code().message();
  } catch (const std::exception& error) {
    found.problem = error.what();
  }
  return found;
}

}  // namespace Norvik::Common
