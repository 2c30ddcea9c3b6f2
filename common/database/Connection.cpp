#include "common/database/Connection.h"

namespace Norvik::Common {
namespace {

// Longer than the longest batch, so that a writer waits for a whole file inventory to be saved.
constexpr int BusyTimeoutMilliseconds = 60000;

// The cache holds the index over a few hundred thousand paths while they are inserted; the limit
// gives the room of a large transaction's log back to the disk. Deleted rows are not overwritten:
// they are file names in a file of the owner's, and clearing a full table would take as long as
// filling it.
constexpr char Settings[] =
    "PRAGMA synchronous=NORMAL; PRAGMA cache_size=-8192; PRAGMA journal_size_limit=4194304; "
    "PRAGMA secure_delete=OFF;";

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
  sqlite_api::sqlite3_busy_timeout(handle_, BusyTimeoutMilliseconds);
}

void Connection::Configure() { ExecuteScript(Settings); }

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
