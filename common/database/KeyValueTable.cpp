#include "common/database/KeyValueTable.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <stdexcept>

#include "common/database/DataBase.h"

namespace Norvik::Common {
namespace {

bool IsNameCharacter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == '_';
}

void RunAndCommit(const std::string& sentence, const std::vector<V2::DataBaseValue>& values) {
  V2::DataBase dataBase;
  dataBase.ExecuteSentence(sentence, values);
  dataBase.Commit();
}

}  // namespace

std::string QuotedTableName(const std::string& name) {
  if (name.empty() || !std::all_of(name.begin(), name.end(), IsNameCharacter)) {
    throw std::invalid_argument("not the name of a table: \"" + name + '"');
  }
  return '"' + name + '"';
}

template <class Integer>
boost::optional<Integer> ParseInteger(const std::string& text) {
  Integer value{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end) return boost::none;
  return value;
}

template boost::optional<int> ParseInteger<int>(const std::string&);
template boost::optional<std::int64_t> ParseInteger<std::int64_t>(const std::string&);

boost::optional<std::string> ReadKey(const std::string& table, const std::string& key) {
  V2::DataBase dataBase;
  const auto rows = dataBase.ExecuteSentence(
      "select value from " + QuotedTableName(table) + " where name='{1}'", {key});
  if (rows.empty()) return boost::none;
  return boost::get<std::string>(rows.front().front());
}

void WriteKey(const std::string& table, const std::string& key, const std::string& value) {
  RunAndCommit("insert into " + QuotedTableName(table) +
                   "(name, value) values('{1}', '{2}') "
                   "on conflict(name) do update set value=excluded.value",
               {key, value});
}

std::vector<std::string> ReadKeysFrom(const std::string& table, const std::string& prefix) {
  V2::DataBase dataBase;
  std::vector<std::string> keys;
  for (const auto& row : dataBase.ExecuteSentence("select name from " + QuotedTableName(table) +
                                                      " where substr(name, 1, {2}) = '{1}' "
                                                      "order by name",
                                                  {prefix, static_cast<int>(prefix.size())})) {
    keys.push_back(boost::get<std::string>(row.front()));
  }
  return keys;
}

void RemoveKey(const std::string& table, const std::string& key) {
  RunAndCommit("delete from " + QuotedTableName(table) + " where name='{1}'", {key});
}

}  // namespace Norvik::Common
