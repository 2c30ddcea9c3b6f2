#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "receiver/database/Dialect.h"

namespace Norvik::Receiver {

/// A parameter of a statement. All are passed as texts; the database converts them to the type of
/// where they are used.
struct Value {
  Value(const std::string& value) : text(value) {}
  Value(const char* value) : text(value) {}
  template <class Number, class = std::enable_if_t<std::is_integral_v<Number>>>
  Value(Number value) : text(std::to_string(value)) {}

  std::string text;
};
using Values = std::vector<Value>;

/// A connection to the database. One thread uses it at a time. A statement is prepared at its first
/// use and kept; "?" stands for its parameters, and `Dialect` replaces words. Values never become
/// part of a statement. Members throw a subclass of `std::runtime_error`; the connection must not
/// be used any more then.
class Session {
 public:
  /// @param database as `Dialect` has it
  explicit Session(const std::string& database);
  Session(Session&& other) noexcept;
  ~Session();

  /// Runs a statement that returns no rows. Returns the number of rows that it has changed.
  long long Run(const std::string& statement, const Values& values = {});
  /// The rows of a statement; null is an empty text.
  template <std::size_t columns>
  std::vector<std::array<std::string, columns>> Rows(const std::string& statement,
                                                     const Values& values = {}) {
    std::vector<std::array<std::string, columns>> rows;
    for (auto& cells : RowsOf(statement, values, columns)) {
      std::array<std::string, columns>& row = rows.emplace_back();
      for (std::size_t column = 0; column < columns; ++column) row[column].swap(cells[column]);
    }
    return rows;
  }
  /// Runs statements without parameters, and keeps none of them prepared.
  void RunScript(const std::string& statements);

  const Dialect& Kind() const { return dialect_; }

 private:
  struct Connection;
  struct Prepared;
  Prepared& PreparedFor(const std::string& statement, const Values& values, std::size_t columns);
  std::vector<std::vector<std::string>> RowsOf(const std::string& statement, const Values& values,
                                               std::size_t columns);

  Dialect dialect_;
  std::unique_ptr<Connection> connection_;
};

/// A transaction that may write. It is rolled back unless it is committed.
class Transaction {
 public:
  explicit Transaction(Session& session);
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction();
  void Commit();

 private:
  Session& session_;
  bool isOpen_ = true;
};

/// Seconds since 1970.
long long Now();

}  // namespace Norvik::Receiver
