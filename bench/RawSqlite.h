#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "InventoryRow.h"

namespace Norvik::Bench {

/// Inserts and reads through SQLite's own C interface and one prepared statement each: the baseline
/// of the database layer. Throws `std::runtime_error` on failure.
class RawSqlite {
 public:
  explicit RawSqlite(const std::string& file);
  RawSqlite(const RawSqlite&) = delete;
  RawSqlite& operator=(const RawSqlite&) = delete;
  ~RawSqlite();

  void Clear();
  void Begin();
  void Insert(const InventoryRow& row);
  void Commit();
  /// Runs a statement; returns the number of its rows.
  std::size_t CountRows(const char* text);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace Norvik::Bench
