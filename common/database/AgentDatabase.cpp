#include "common/database/AgentDatabase.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <utility>

#include "common/database/ConnectionPool.h"
#include "common/database/DataBase.h"
#include "common/database/DatabaseFile.h"
#include "common/database/KeyValueTable.h"
#include "common/database/Statement.h"

namespace Norvik::Common {
namespace {

std::string SelectText(const std::string& table, int offset, int limit, int order) {
  std::string text = "select * from " + QuotedTableName(table);
  if (order > 0) text += " order by " + std::to_string(order);
  const int most = limit > 0 ? limit : -1;
  return text + " limit " + std::to_string(most) + " offset " + std::to_string(std::max(0, offset));
}

}  // namespace

struct AgentDatabase::State {
  explicit State(std::shared_ptr<ConnectionPool> opened) : pool(std::move(opened)) {
    ConnectionPool::Install(pool);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { ConnectionPool::Uninstall(); }

  std::shared_ptr<ConnectionPool> pool;
};

AgentDatabase::AgentDatabase(const boost::filesystem::path& folder, Access access)
    : state_(std::make_unique<State>(
          (access == Access::ReadOnly ? OpenDatabaseFileToRead : OpenDatabaseFile)(
              folder / SQLiteNames::SQLITE_CURRENT_DATABASE_NAME))) {}

AgentDatabase::~AgentDatabase() = default;

std::unique_ptr<DbResponseTable> AgentDatabase::GetTable(const std::string& name, int offset,
                                                         int limit, int order) {
  if (!V2::DataBase::ExistTable(name)) return nullptr;
  auto connection = state_->pool->Take();
  auto table = Statement(*connection, SelectText(name, offset, limit, order)).RunAsTable({});
  state_->pool->Return(std::move(connection));
  return table;
}

CorruptDatabaseError::CorruptDatabaseError(const std::string& text, boost::filesystem::path keptAs)
    : std::runtime_error(text), keptAs_(std::move(keptAs)) {}

CorruptDatabaseError::~CorruptDatabaseError() = default;

void AgentDatabase::SetWaitListener(std::function<void()> listener) {
  if (!listener) return Connection::SetWaitListener({});
  Connection::SetWaitListener([notify = std::move(listener)] {
    if (!ConnectionPool::IsContended()) notify();
  });
}

bool AgentDatabase::LeaveOutConnectionLocks() {
  return sqlite_api::sqlite3_config(SQLITE_CONFIG_MULTITHREAD) == SQLITE_OK &&
         sqlite_api::sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK;
}

void CopyDatabase(const boost::filesystem::path& source, const boost::filesystem::path& target) {
  if (!boost::filesystem::exists(source)) {
    throw std::runtime_error("there is no database " + source.string());
  }
  const auto from = OpenDatabaseFileToRead(source)->Take();
  Connection to(target);
  auto* const backup = sqlite_api::sqlite3_backup_init(to.Handle(), "main", from->Handle(), "main");
  if (!backup) to.ThrowLastError(SQLITE_ERROR, "copy of " + source.string());
  sqlite_api::sqlite3_backup_step(backup, -1);
  const int code = sqlite_api::sqlite3_backup_finish(backup);
  if (code != SQLITE_OK) to.ThrowLastError(code, "copy of " + source.string());
}

}  // namespace Norvik::Common
