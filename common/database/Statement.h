#pragma once

#include <memory>
#include <string>
#include <vector>

#include "common/database/Connection.h"
#include "common/database/DataBase.h"
#include "common/database/IDataBase.h"
#include "common/database/Sentence.h"

namespace Norvik::Common {

/// A value that stays bound to a parameter until another one comes. Half of the values of a file
/// inventory are the same in each row.
struct BoundValue {
  enum Kind { Other, Number, EmptyText };
  Kind kind = Other;  ///< other values are bound for each run
  long long number = 0;
};

/// A prepared statement, to be run many times with other values. It must not outlive its
/// connection, and is used on the same thread. It calls SQLite's own interface: SOCI would allocate
/// its exchange objects, and copy every value twice, for each row.
class Statement {
 public:
  /// Throws `soci::soci_error` for a text that SQLite refuses, or that holds a second statement.
  Statement(Connection& connection, const std::string& text);

  /// Whether the statement may change the database.
  bool Writes() const { return writes_; }

  // Each run throws `std::out_of_range` if a placeholder has no value, and `soci::soci_error`.

  V2::DataBaseRows Run(const std::vector<V2::DataBaseValue>& values);
  /// Calls the visitor with each row; what it throws passes through.
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
  std::vector<BoundValue> bound_;  ///< by the parameters of the sentence
  std::unique_ptr<sqlite_api::sqlite3_stmt, Finalizer> handle_;
  bool writes_ = false;
};

}  // namespace Norvik::Common
