#pragma once

#include <boost/variant.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common {

/// A whole table, read through `IDataBase::GetTable`.
struct DbResponseTable {
  struct Column {
    std::string name;
    std::string declaredType;
  };
  std::vector<Column> columns;
  std::vector<std::vector<std::string>> rows;  ///< cells as text, NULL as empty text
};

/// The older interface of the agent database; `V2::DataBase` is the newer one. Any thread may call.
class NORVIK_COMMON_API IDataBase {
 public:
  struct DbLastInsertedOnTransaction {};
  struct DbNull_t {};
  using InsertValue =
      boost::variant<unsigned long long, std::string, DbLastInsertedOnTransaction, DbNull_t>;

  virtual ~IDataBase();

  /// Reads a table. Null if it does not exist or has no row. Throws a subclass of `std::exception`
  /// if the database fails.
  /// @param offset number of rows to skip at the start
  /// @param limit  maximal number of rows; 0: all
  /// @param order  number of the column to sort by, from 1; 0: not sorted
  virtual std::unique_ptr<DbResponseTable> GetTable(const std::string& name, int offset, int limit,
                                                    int order) = 0;

 protected:
  IDataBase() = default;
  IDataBase(const IDataBase&) = default;
  IDataBase& operator=(const IDataBase&) = default;
};

}  // namespace Norvik::Common
