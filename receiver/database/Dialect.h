#pragma once

#include <string>

namespace Norvik::Receiver {

/// What differs between the databases. Everything else is the same text for both: in a statement,
/// `{word}` stands for the database's own words.
class Dialect {
 public:
  /// @param database an address "postgresql://...", or the file of SQLite
  explicit Dialect(const std::string& database);

  /// Several processes may write, and rows are locked one by one. Otherwise one process works on
  /// documents, and one connection writes at a time.
  bool IsShared() const { return isPostgresql_; }
  /// Names of SOCI: the backend, and how it connects to `database`.
  const char* Backend() const { return isPostgresql_ ? "postgresql" : "sqlite3"; }
  std::string Connection(const std::string& database) const;
  /// Statements that each new connection runs.
  const char* Preparation() const;
  /// The statement with this database's words.
  std::string Expanded(std::string statement) const;
  /// What divides a table by the agent after its creation; empty if nothing does.
  std::string PartitionsOf(const std::string& table) const;

 private:
  bool isPostgresql_;
};

}  // namespace Norvik::Receiver
