#include "common/database/Connection.h"

#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include "common/database/OneSqlite.h"

namespace Norvik::Common {
namespace {

// Longer than the longest transaction: a writer has to wait until a whole file inventory is saved.
constexpr std::chrono::seconds BUSY_TIMEOUT(60);
constexpr std::chrono::seconds NOTICE_AFTER(1);
constexpr std::chrono::milliseconds BUSY_PAUSE(20);

// The cache is large enough for the index of a few hundred thousand paths while they are inserted;
// the size limit returns the space of a large transaction's journal to the disk. 250 of our large
// pages are 16 MiB of the journal, after which it is moved into the file. Deleted rows are not
// overwritten: they are file names in a file that only its owner can read, and clearing a full
// table would take as long as filling it. Temporary files would be outside the data folder, where
// this process may not be able to write.
constexpr char SETTINGS[] =
    "PRAGMA synchronous=NORMAL; PRAGMA cache_size=-8192; PRAGMA journal_size_limit=4194304; "
    "PRAGMA secure_delete=OFF; PRAGMA temp_store=MEMORY; PRAGMA wal_autocheckpoint=250;";

struct SharedListener {
  std::mutex mutex;
  Connection::WaitListener listener;
};

SharedListener& TheWaitListener() {
  static SharedListener instance;
  return instance;
}

void NotifyOfWait() {
  auto& shared = TheWaitListener();
  const std::lock_guard lock(shared.mutex);
  if (shared.listener) shared.listener();
}

// SOCI parses a text with an equals sign as "key=value" pairs, and takes any other one for the
// path.
std::string ConnectString(const std::string& path) {
  if (path.find('=') == std::string::npos) return path;
  if (path.find('"') == std::string::npos) return "dbname=\"" + path + '"';
  throw soci::soci_error("a database path cannot hold both = and \": " + path);
}

soci::session OpenSession(const std::string& path) {
  static const bool one = SociUsesOurSqlite();
  if (!one) throw std::runtime_error("SOCI uses another SQLite library than the agent does");
  try {
    return soci::session(soci::sqlite3, ConnectString(path));
  } catch (const soci::sqlite3_soci_error& error) {
    throw SqliteError(error.what(), error.result());
  }
}

// SOCI does not export the type information of its backend, so the sanitizer cannot check the cast.
__attribute__((no_sanitize("vptr"))) sqlite_api::sqlite3* HandleOf(soci::session& session) {
  return static_cast<soci::sqlite3_session_backend*>(session.get_backend())->conn_;
}

}  // namespace

Connection::Connection(const boost::filesystem::path& file)
    : session_(OpenSession(file.string())), handle_(HandleOf(session_)) {
  sqlite_api::sqlite3_busy_handler(handle_, OnBusy, this);
}

void Connection::SetWaitListener(WaitListener listener) {
  auto& shared = TheWaitListener();
  const std::lock_guard lock(shared.mutex);
  shared.listener = std::move(listener);
}

int Connection::OnBusy(void* connection, int earlierCalls) {
  return static_cast<Connection*>(connection)->Wait(earlierCalls == 0) ? 1 : 0;
}

/// False if the wait has lasted too long.
bool Connection::Wait(bool begins) {
  const auto now = std::chrono::steady_clock::now();
  if (begins) {
    waitingSince_ = now;
    hasNotified_ = false;
  }
  const auto waited = now - waitingSince_;
  if (waited >= BUSY_TIMEOUT) return false;
  if (waited >= NOTICE_AFTER && !std::exchange(hasNotified_, true)) NotifyOfWait();
  std::this_thread::sleep_for(begins ? std::chrono::milliseconds(1) : BUSY_PAUSE);
  return true;
}

void Connection::OnlyRead(bool hasLog) {
  CheckpointOnClose(!hasLog);
  ExecuteScript("PRAGMA query_only=ON; PRAGMA temp_store=MEMORY");
}

void Connection::Configure() { ExecuteScript(SETTINGS); }

void Connection::ExecuteScript(const std::string& script) {
  const int code = sqlite_api::sqlite3_exec(handle_, script.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) ThrowLastError(code, script);
}

bool Connection::Rollback() noexcept {
  if (!InTransaction()) return true;
  sqlite_api::sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
  return !InTransaction();
}

void Connection::CheckpointOnClose(bool allowed) {
  const int code = sqlite_api::sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE,
                                                 allowed ? 0 : 1, nullptr);
  if (code != SQLITE_OK) ThrowLastError(code, "no checkpoint on close");
}

void Connection::ThrowLastError(int code, const std::string& statement) const {
  throw SqliteError(std::string(sqlite_api::sqlite3_errmsg(handle_)) + " in: " + statement, code);
}

}  // namespace Norvik::Common
