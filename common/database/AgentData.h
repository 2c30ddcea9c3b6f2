#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/database/IDataBase.h"

namespace Norvik::Common {

/// The table with the general data of the agent. `V2::DataBase::GetDataTable` reads it as well.
inline constexpr char AGENT_DATA_TABLE[] = "DATA";

/// A key and value store in one table of the agent database (columns `name`, unique, and `value`).
/// Values are stored as text: integers in decimal, times as whole seconds since the epoch. Copies
/// use the same table. Any thread may call.
///
/// Reading throws what the database throws. Writing does not throw: it returns false after an
/// error, which is logged. If the database is gone, every key is missing and writing returns false.
class NORVIK_COMMON_API AgentData {
 public:
  AgentData(std::weak_ptr<IDataBase> dataBase, const std::string& table);

  /// The text of a key; empty if the key is missing.
  boost::optional<std::string> GetOptionalString(const std::string& name) const;
  bool SetString(const std::string& name, const std::string& value);

  /// Null if the key is missing or its text is no integer of 64 bits.
  std::unique_ptr<std::int64_t> GetInt64(const std::string& name) const;
  bool SetInt64(const std::string& name, std::int64_t value);

  /// Null if the key is missing or its text is no time that the clock can hold.
  std::unique_ptr<std::chrono::system_clock::time_point> GetDateTime(const std::string& name) const;
  /// Fractions of a second are cut off.
  bool SetDateTime(const std::string& name, const std::chrono::system_clock::time_point& value);

  /// The keys that begin with a text of letters, digits and underscores, in order.
  std::vector<std::string> NamesFrom(const std::string& prefix) const;
  /// Removes a key. True also if it was missing.
  bool Remove(const std::string& name);

 private:
  std::weak_ptr<IDataBase> dataBase_;
  std::string table_;
};

}  // namespace Norvik::Common
