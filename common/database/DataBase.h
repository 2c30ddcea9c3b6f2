#pragma once

#include <boost/optional.hpp>
#include <boost/variant.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common::V2 {

/// A value bound to a statement, or a cell of its result. Names the built-in integers, because an
/// alias such as `int64_t` is another alternative on each system.
using DataBaseValue =
    boost::variant<int, unsigned int, long long, unsigned long long, std::string, double, long>;
using DataBaseRow = std::vector<DataBaseValue>;
using DataBaseRows = std::vector<DataBaseRow>;
using RowVisitor = std::function<void(DataBaseRow&)>;

/// A batch of statements on the agent database, on a connection of its own. The first statement
/// that writes opens a transaction; `Commit` ends it; without `Commit` the destructor rolls back.
/// A statement's text is prepared once per object. Every member raises a subclass of
/// `std::exception` on failure. Use an object on one thread; objects on several threads work side
/// by side (writers wait for each other).
class NORVIK_COMMON_API DataBase {
 public:
  /// Raises if the process has opened no agent database (`AgentDatabase`).
  DataBase();
  DataBase(const DataBase&) = delete;
  DataBase& operator=(const DataBase&) = delete;
  ~DataBase();

  /// Runs one statement. `{n}` and `%n%`, counted from 1, stand for the n-th value, with or
  /// without single quotes around them (in quotes: bound as text); values never become SQL text.
  /// Returns the result rows. A cell has the type that its column was declared with: INTEGER an
  /// `int`, BIGINT a `long long`, TEXT a `std::string`, REAL a `double`; NULL gives that type's
  /// zero or empty value.
  DataBaseRows ExecuteSentence(const std::string& sentence,
                               const std::vector<DataBaseValue>& values = {});
  /// The same for a result that is too large to be held: the visitor gets each row before the next
  /// is read, and may take its texts. It must not use this object.
  void VisitRows(const std::string& sentence, const RowVisitor& visit);
  void Commit();

  static bool ExistTable(const std::string& name);
  static bool IsTableEmpty(const std::string& name);
  /// Empties a table at once, on a connection of its own: call it with no other transaction open
  /// on this thread.
  static void ClearTable(const std::string& name);

  /// Integer and text values of the "DATA" table. An absent key gives 0 or nothing.
  static int GetDataTable(const std::string& key);
  static void SetDataTable(const std::string& key, int value);
  static boost::optional<std::string> GetOptionalStringDataTable(const std::string& key);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace Norvik::Common::V2
