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
  std::vector<std::vector<std::string>> rows;  ///< cells as text; NULL is empty
};

/// The older road to the agent database.
class NORVIK_COMMON_API IDataBase {
 public:
  struct DbLastInsertedOnTransaction {};
  struct DbNull_t {};
  using InsertValue =
      boost::variant<unsigned long long, std::string, DbLastInsertedOnTransaction, DbNull_t>;

  virtual ~IDataBase();

  /// Reads a table. Null if it does not exist or holds no row.
  /// @param offset rows to leave out at the start
  /// @param limit  most rows to read; 0: all
  /// @param order  column to sort by, counted from 1; 0: as the table gives them
  virtual std::unique_ptr<DbResponseTable> GetTable(const std::string& name, int offset, int limit,
                                                    int order) = 0;

 protected:
  IDataBase() = default;
  IDataBase(const IDataBase&) = default;
  IDataBase& operator=(const IDataBase&) = default;
};

}  // namespace Norvik::Common
