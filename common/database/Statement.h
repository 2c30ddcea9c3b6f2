#pragma once

#include <memory>
#include <string>
#include <vector>

#include "common/database/Connection.h"
#include "common/database/DataBase.h"
#include "common/database/IDataBase.h"
#include "common/database/Sentence.h"

namespace Norvik::Common {

/// A prepared statement, run again and again with fresh values. It must not outlive its
/// connection. Binds and steps through SQLite's own interface: SOCI's exchange elements would be
/// made anew, and every value copied twice, for each row.
class Statement {
 public:
  /// Raises `soci::soci_error` for a text that SQLite refuses or that holds a second statement.
  Statement(Connection& connection, const std::string& text);

  bool Writes() const { return writes_; }

  /// Raises `std::out_of_range` if the text has a placeholder beyond the values.
  V2::DataBaseRows Run(const std::vector<V2::DataBaseValue>& values);
  /// Hands each row over; raises also what the visitor raises.
  void Visit(const std::vector<V2::DataBaseValue>& values, const V2::RowVisitor& visit);
  /// The result with every cell as text; null if it has no row.
  std::unique_ptr<DbResponseTable> RunAsTable(const std::vector<V2::DataBaseValue>& values);

 private:
  struct Finalizer {
    void operator()(sqlite_api::sqlite3_stmt* statement) const {
      sqlite_api::sqlite3_finalize(statement);
    }
  };
  void Bind(const std::vector<V2::DataBaseValue>& values);
  bool Step();

  Connection& connection_;
  std::string text_;
  Sentence sentence_;
  std::unique_ptr<sqlite_api::sqlite3_stmt, Finalizer> handle_;
  bool writes_ = false;
};

}  // namespace Norvik::Common
