#pragma once

#include <boost/optional.hpp>
#include <boost/variant.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common::V2 {

/// A value bound to a statement, or a cell of its result. Lists the built-in integer types, because
/// an alias such as `int64_t` is a different one of them on each system.
using DataBaseValue =
    boost::variant<int, unsigned int, long long, unsigned long long, std::string, double, long>;
using DataBaseRow = std::vector<DataBaseValue>;
using DataBaseRows = std::vector<DataBaseRow>;
using RowVisitor = std::function<void(DataBaseRow&)>;

/// A batch of statements on the agent database, on a connection of its own. The first statement
/// that writes begins a transaction and `Commit` ends it; without `Commit` the destructor rolls
/// back. An object prepares each text of a statement once, so run many statements on one object.
/// Every member throws a subclass of `std::exception` on failure. One thread may use an object;
/// objects on several threads work in parallel, and writers wait for each other, a minute at most.
class NORVIK_COMMON_API DataBase {
 public:
  /// Throws if the process has no open `AgentDatabase`.
  DataBase();
  DataBase(const DataBase&) = delete;
  DataBase& operator=(const DataBase&) = delete;
  ~DataBase();

  /// Runs one statement and returns the rows of its result. `{n}` and `%n%` stand for the n-th
  /// value, counted from 1; in single quotes, `'{n}'`, the value is bound as text. Values never
  /// become SQL text, so they need no quoting. A cell has the type that its column was declared
  /// with: `int` for INTEGER, `long long` for BIGINT, `std::string` for TEXT, `double` for REAL.
  /// NULL gives the zero or empty value of that type.
  DataBaseRows ExecuteSentence(const std::string& sentence,
                               const std::vector<DataBaseValue>& values = {});
  /// The same for a result that is too large for the memory: the visitor gets each row before the
  /// next one is read, and may move its texts away. It must not use this object; what it throws
  /// passes through.
  void VisitRows(const std::string& sentence, const RowVisitor& visit);
  /// Ends the transaction and makes its changes last. Does nothing if no statement has written.
  void Commit();

  // The static members use a connection of their own, each call for itself.

  static bool ExistTable(const std::string& name);
  /// Throws also if there is no such table.
  static bool IsTableEmpty(const std::string& name);
  /// Removes all rows of a table and commits. Call it with no transaction open on this thread, or
  /// it waits for that one and fails.
  static void ClearTable(const std::string& name);

  // Values of the "DATA" table by key.

  /// 0 if the key is missing or its text is no `int`.
  static int GetDataTable(const std::string& key);
  static void SetDataTable(const std::string& key, int value);
  /// Empty if the key is missing.
  static boost::optional<std::string> GetOptionalStringDataTable(const std::string& key);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace Norvik::Common::V2
