#include "common/database/ConnectionPool.h"

#include <stdexcept>
#include <utility>

namespace Norvik::Common {
namespace {

constexpr std::size_t MOST_IDLE = 4;

struct ProcessPool {
  std::mutex mutex;
  std::shared_ptr<ConnectionPool> pool;
};

ProcessPool& TheProcessPool() {
  static ProcessPool instance;
  return instance;
}

}  // namespace

ConnectionPool::ConnectionPool(Connect connect, std::unique_ptr<Connection> first)
    : connect_(std::move(connect)) {
  idle_.reserve(MOST_IDLE);
  idle_.push_back(std::move(first));
}

std::unique_ptr<Connection> ConnectionPool::TakeIdle() {
  const std::lock_guard lock(mutex_);
  if (idle_.empty()) return nullptr;
  auto connection = std::move(idle_.back());
  idle_.pop_back();
  return connection;
}

std::unique_ptr<Connection> ConnectionPool::Take() {
  auto connection = TakeIdle();
  if (!connection) connection = connect_();
  ++inUse_;
  return connection;
}

void ConnectionPool::Return(std::unique_ptr<Connection> connection) noexcept {
  --inUse_;
  // A connection that cannot roll back is closed, and that rolls back.
  if (!connection->Rollback()) return;
  sqlite_api::sqlite3_db_release_memory(connection->Handle());
  const std::lock_guard lock(mutex_);
  if (!closed_ && idle_.size() < MOST_IDLE) idle_.push_back(std::move(connection));
}

void ConnectionPool::Close() noexcept {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  idle_.clear();
}

std::shared_ptr<ConnectionPool> ConnectionPool::Current() {
  auto& process = TheProcessPool();
  const std::lock_guard lock(process.mutex);
  if (!process.pool) throw std::runtime_error("no agent database is open in this process");
  return process.pool;
}

void ConnectionPool::Install(std::shared_ptr<ConnectionPool> pool) {
  auto& process = TheProcessPool();
  const std::lock_guard lock(process.mutex);
  if (process.pool) throw std::runtime_error("an agent database is open in this process already");
  process.pool = std::move(pool);
}

void ConnectionPool::Uninstall() noexcept {
  std::shared_ptr<ConnectionPool> pool;
  {
    auto& process = TheProcessPool();
    const std::lock_guard lock(process.mutex);
    pool.swap(process.pool);
  }
  if (pool) pool->Close();
}

bool ConnectionPool::IsContended() noexcept {
  auto& process = TheProcessPool();
  const std::lock_guard lock(process.mutex);
  return process.pool && process.pool->inUse_ > 1;
}

}  // namespace Norvik::Common
