#include "common/database/FreedSpace.h"

#include <boost/format.hpp>
#include <exception>
#include <string>

#include "common/database/ConnectionPool.h"
#include "common/database/Statement.h"
#include "common/log/Logger.h"

namespace Norvik::Common {

namespace {

constexpr long long WORTHWHILE = 1 << 20;

/// A connection of the process's pool for a scope.
class Pooled {
 public:
  Pooled() : pool_(ConnectionPool::Current()), connection_(pool_->Take()) {}
  Pooled(const Pooled&) = delete;
  Pooled& operator=(const Pooled&) = delete;
  ~Pooled() { pool_->Return(std::move(connection_)); }

  Connection& operator*() { return *connection_; }

 private:
  const std::shared_ptr<ConnectionPool> pool_;
  std::unique_ptr<Connection> connection_;
};

long long Number(Connection& connection, const char* pragma) {
  return boost::get<int>(
      Statement(connection, std::string("PRAGMA ") + pragma).Run({}).at(0).at(0));
}

long long UsedPages() {
  Pooled connection;
  return Number(*connection, "page_count") - Number(*connection, "freelist_count");
}

void GiveBack(long long pages) {
  Pooled connection;
  if (pages * Number(*connection, "page_size") < WORTHWHILE) return;
  (*connection).ExecuteScript("PRAGMA incremental_vacuum(" + std::to_string(pages) + ")");
  // Only this makes the file shorter; what it cannot do now, a later one does.
  (*connection).ExecuteScript("PRAGMA wal_checkpoint(PASSIVE)");
}

}  // namespace

void GiveBackFreedSpace(const std::function<void()>& step) {
  long long before = 0;
  const auto logged = [](const auto& call) {
    try {
      call();
    } catch (const std::exception& error) {
      NORVIK_WARNING(boost::format("Space of the database is not given back: %1%") % error.what());
    }
  };
  logged([&] { before = UsedPages(); });
  step();
  logged([&] { GiveBack(before - UsedPages()); });
}

}  // namespace Norvik::Common
