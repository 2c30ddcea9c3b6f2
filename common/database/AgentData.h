#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "common/Api.h"
#include "common/database/IDataBase.h"

namespace Norvik::Common {

/// Table that holds the agent's general data; `V2::DataBase::GetDataTable` reads it as well.
inline constexpr char AGENT_DATA_TABLE[] = "DATA";

/// Key and value store over one table of the agent database (columns `name`, unique, and `value`).
/// Every value is kept as text: integers as decimal text, times as whole seconds since the epoch.
/// Safe on any thread. Reading raises what the database raises; an expired database reads as
/// having no keys and refuses to write.
class NORVIK_COMMON_API AgentData {
 public:
  AgentData(std::weak_ptr<IDataBase> dataBase, const std::string& table);

  boost::optional<std::string> GetOptionalString(const std::string& name) const;
  bool SetString(const std::string& name, const std::string& value);

  /// Null if the key is absent or its text is no number.
  std::unique_ptr<std::int64_t> GetInt64(const std::string& name) const;
  bool SetInt64(const std::string& name, std::int64_t value);

  std::unique_ptr<std::chrono::system_clock::time_point> GetDateTime(const std::string& name) const;
  bool SetDateTime(const std::string& name, const std::chrono::system_clock::time_point& value);

  /// Forgets a key; true also if it was absent.
  bool Remove(const std::string& name);

 private:
  std::weak_ptr<IDataBase> dataBase_;
  std::string table_;
};

}  // namespace Norvik::Common
