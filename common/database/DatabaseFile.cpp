#include "common/database/DatabaseFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <string>
#include <system_error>
#include <thread>

#include "common/database/AgentDatabase.h"
#include "common/database/DatabaseSchema.h"
#include "common/database/Statement.h"

namespace Norvik::Common {
namespace {

namespace fs = boost::filesystem;

// SQLite gives its two side files the mode of the main file.
void MakeOwnersFile(const fs::path& file) {
  const int descriptor =
      ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, S_IRUSR | S_IWUSR);
  if (descriptor < 0) throw std::system_error(errno, std::generic_category());
  const bool restricted = ::fchmod(descriptor, S_IRUSR | S_IWUSR) == 0;
  const int error = errno;
  ::close(descriptor);
  // A file of another user that this one may write keeps its mode.
  if (!restricted && error != EPERM) throw std::system_error(error, std::generic_category());
}

bool IsDamage(const SqliteError& error) {
  return error.Code() == SQLITE_CORRUPT || error.Code() == SQLITE_NOTADB;
}

// A description of the damage in the file; empty if the file is sound.
std::string FindDamage(Connection& connection) {
  try {
    const auto rows = Statement(connection, "PRAGMA quick_check(1)").Run({});
    const auto& finding = boost::get<std::string>(rows.at(0).at(0));
    return finding == "ok" ? "" : finding;
  } catch (const SqliteError& error) {
    if (!IsDamage(error)) throw;
    return sqlite_api::sqlite3_errstr(error.Code());
  }
}

std::string UtcStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm fields{};
  ::gmtime_r(&now, &fields);
  char text[sizeof "20260101T000000Z"];
  std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &fields);
  return text;
}

fs::path FreeNameBeside(const fs::path& file) {
  const std::string name = file.string() + ".corrupt-" + UtcStamp();
  fs::path candidate = name;
  for (int number = 2; fs::exists(fs::symlink_status(candidate)); ++number) {
    candidate = name + '-' + std::to_string(number);
  }
  return candidate;
}

// The side files keep their suffixes, so that the three still belong together.
fs::path PutAside(const fs::path& file) {
  fs::path kept = FreeNameBeside(file);
  fs::rename(file, kept);
  for (const char* suffix : {"-wal", "-shm"}) {
    const fs::path side = file.string() + suffix;
    if (fs::exists(side)) fs::rename(side, kept.string() + suffix);
  }
  return kept;
}

// The file's first switch to write-ahead logging needs it alone, and SQLite does not wait for that.
void UseWriteAheadLog(Connection& connection) {
  constexpr int ATTEMPTS = 200;
  constexpr std::chrono::milliseconds PAUSE(25);
  for (int attempt = 1;; ++attempt) {
    try {
      connection.ExecuteScript("PRAGMA journal_mode=WAL");
      return;
    } catch (const SqliteError& error) {
      if (error.Code() != SQLITE_BUSY || attempt == ATTEMPTS) throw;
    }
    std::this_thread::sleep_for(PAUSE);
  }
}

// A file inventory fills the file and compares it by long paths, for which SQLite's own size makes
// trees too deep. A file that holds something keeps the size that it was made with.
constexpr char SET_PAGE_SIZE[] = "PRAGMA page_size=65536";
// Lets free space be given back to the file system, see `GiveBackFreedSpace`.
constexpr char SET_VACUUM[] = "PRAGMA auto_vacuum=INCREMENTAL";

long long Number(Connection& connection, const char* pragma) {
  return boost::get<int>(Statement(connection, pragma).Run({}).at(0).at(0));
}

// A file that is nearly empty, but large, is rewritten; it may be from before `SET_VACUUM`. In
// memory, as the folder for temporary files need not exist.
void CompactIfNearlyEmpty(Connection& connection) {
  constexpr long long LARGE = 64 << 20;
  const long long page = Number(connection, "PRAGMA page_size");
  const long long free = Number(connection, "PRAGMA freelist_count") * page;
  const long long used = Number(connection, "PRAGMA page_count") * page - free;
  if (free < LARGE || used > LARGE / 2) return;
  connection.ExecuteScript(SET_VACUUM);
  connection.ExecuteScript("VACUUM");
  connection.ExecuteScript("PRAGMA wal_checkpoint(PASSIVE)");
}

std::unique_ptr<Connection> OpenUndamaged(const fs::path& file) {
  auto connection = std::make_unique<Connection>(file);
  // Else closing a damaged file would move its log into it.
  connection->CheckpointOnClose(false);
  const std::string damage = FindDamage(*connection);
  if (!damage.empty()) {
    connection.reset();
    const fs::path kept = PutAside(file);
    throw CorruptDatabaseError("the database " + file.string() + " is damaged (" + damage +
                                   "); it is kept as " + kept.string(),
                               kept);
  }
  connection->CheckpointOnClose(true);
  return connection;
}

std::unique_ptr<Connection> OpenNewest(const fs::path& file) {
  MakeOwnersFile(file);
  auto connection = OpenUndamaged(file);
  CheckSchemaVersion(*connection);
  connection->ExecuteScript(SET_PAGE_SIZE);
  // An existing file is not written to before its schema is known.
  if (Number(*connection, "PRAGMA page_count") == 0) connection->ExecuteScript(SET_VACUUM);
  connection->Configure();
  UseWriteAheadLog(*connection);
  UpgradeSchema(*connection);
  CompactIfNearlyEmpty(*connection);
  return connection;
}

std::string ReasonOf(const std::exception& error) {
  const auto* const ofSqlite = dynamic_cast<const SqliteError*>(&error);
  const int code = ofSqlite ? ofSqlite->Code() : SQLITE_OK;
  if (code == SQLITE_BUSY) return "another program holds it";
  if (code == SQLITE_CANTOPEN) return "it, or a file that belongs beside it, cannot be opened";
  return error.what();
}

// Runs `open`; the text of what it throws then names the file.
template <class Open>
auto Naming(const fs::path& file, Open open) {
  try {
    return open();
  } catch (const CorruptDatabaseError&) {
    throw;
  } catch (const std::exception& error) {
    throw std::runtime_error("cannot open the database " + file.string() + ": " + ReasonOf(error));
  }
}

}  // namespace

std::shared_ptr<ConnectionPool> OpenDatabaseFile(const fs::path& file) {
  const auto connect = [file] {
    auto connection = std::make_unique<Connection>(file);
    connection->Configure();
    return connection;
  };
  return std::make_shared<ConnectionPool>(connect, Naming(file, [&] { return OpenNewest(file); }));
}

std::shared_ptr<ConnectionPool> OpenDatabaseFileToRead(const fs::path& file) {
  // Asked before the first connection, which makes one.
  const bool hasLog = fs::exists(file.string() + "-wal");
  const auto connect = [file, hasLog] {
    auto connection = std::make_unique<Connection>(file);
    connection->OnlyRead(hasLog);
    return connection;
  };
  const auto open = [&] {
    // The journal of a file that is not in use yet, which a reader would roll back.
    if (fs::exists(file.string() + "-journal")) {
      throw std::runtime_error("it is not finished; the next start of an agent does that");
    }
    auto first = connect();
    const std::string damage = FindDamage(*first);
    if (!damage.empty()) throw std::runtime_error("it is damaged (" + damage + ')');
    CheckSchemaVersion(*first);
    return first;
  };
  return std::make_shared<ConnectionPool>(connect, Naming(file, open));
}

}  // namespace Norvik::Common
