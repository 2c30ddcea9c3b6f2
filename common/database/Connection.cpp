#include "common/database/Connection.h"

#include <mutex>
#include <thread>
#include <utility>

namespace Norvik::Common {
namespace {

// Longer than the longest batch, so that a writer waits for a whole file inventory to be saved.
constexpr std::chrono::seconds BUSY_TIMEOUT(60);
constexpr std::chrono::seconds TELLS_OF_WAIT_AFTER(1);
constexpr std::chrono::milliseconds BUSY_PAUSE(20);

// The cache holds the index over a few hundred thousand paths while they are inserted; the limit
// gives the room of a large transaction's log back to the disk. Deleted rows are not overwritten:
// they are file names in a file of the owner's, and clearing a full table would take as long as
// filling it.
constexpr char SETTINGS[] =
    "PRAGMA synchronous=NORMAL; PRAGMA cache_size=-8192; PRAGMA journal_size_limit=4194304; "
    "PRAGMA secure_delete=OFF;";

struct SharedListener {
  std::mutex mutex;
  Connection::WaitListener listener;
};

SharedListener& TheWaitListener() {
  static SharedListener instance;
  return instance;
}

void TellOfWait() {
  auto& shared = TheWaitListener();
  const std::lock_guard lock(shared.mutex);
  if (shared.listener) shared.listener();
}

// SOCI reads "key=value" pairs out of a text that holds an equals sign, the whole text as the
// path otherwise.
std::string ConnectString(const std::string& path) {
  if (path.find('=') == std::string::npos) return path;
  if (path.find('"') == std::string::npos) return "dbname=\"" + path + '"';
  throw soci::soci_error("a database path cannot hold both = and \": " + path);
}

// SOCI keeps the type information of its backend to itself, so that the sanitizer has nothing to
// compare the object with.
__attribute__((no_sanitize("vptr"))) sqlite_api::sqlite3* HandleOf(soci::session& session) {
  return static_cast<soci::sqlite3_session_backend*>(session.get_backend())->conn_;
}

}  // namespace

Connection::Connection(const boost::filesystem::path& file)
    : session_(soci::sqlite3, ConnectString(file.string())), handle_(HandleOf(session_)) {
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

// Whether to try once more.
bool Connection::Wait(bool begins) {
  const auto now = std::chrono::steady_clock::now();
  if (begins) {
    waitingSince_ = now;
    hasToldOfWait_ = false;
  }
  const auto waited = now - waitingSince_;
  if (waited >= BUSY_TIMEOUT) return false;
  if (waited >= TELLS_OF_WAIT_AFTER && !std::exchange(hasToldOfWait_, true)) TellOfWait();
  std::this_thread::sleep_for(begins ? std::chrono::milliseconds(1) : BUSY_PAUSE);
  return true;
}

void Connection::OnlyRead(bool hasLog) {
  CheckpointOnClose(!hasLog);
  ExecuteScript("PRAGMA query_only=ON");
}

void Connection::Configure() { ExecuteScript(SETTINGS); }

void Connection::ExecuteScript(const std::string& script) {
  const int code = sqlite_api::sqlite3_exec(handle_, script.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) RaiseLastError(code, script);
}

bool Connection::Rollback() noexcept {
  if (!InTransaction()) return true;
  sqlite_api::sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
  return !InTransaction();
}

void Connection::CheckpointOnClose(bool allowed) {
  const int code = sqlite_api::sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE,
                                                 allowed ? 0 : 1, nullptr);
  if (code != SQLITE_OK) RaiseLastError(code, "no checkpoint on close");
}

void Connection::RaiseLastError(int code, const std::string& statement) const {
  throw soci::sqlite3_soci_error(
      std::string(sqlite_api::sqlite3_errmsg(handle_)) + " in: " + statement, code);
}

}  // namespace Norvik::Common
