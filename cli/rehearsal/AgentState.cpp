#include "cli/rehearsal/AgentState.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <boost/functional/hash.hpp>
#include <fstream>
#include <set>

#include "common/database/AgentData.h"
#include "common/database/AgentDatabase.h"
#include "common/database/DataBase.h"
#include "host/data/DataFolder.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;
namespace fs = boost::filesystem;

const std::set<std::string> TABLES_OF_KEYS = {AGENT_DATA_TABLE, "KOB_DATA"};

AgentState::Table ReadTable(V2::DataBase& dataBase, const std::string& name) {
  AgentState::Table table;
  dataBase.VisitRows("select * from \"" + name + "\"", [&](V2::DataBaseRow& row) {
    std::size_t hash = 0;
    for (const auto& cell : row) boost::hash_combine(hash, boost::hash_value(cell));
    // A sum, so that the order of the rows does not matter.
    table.fingerprint += hash;
    ++table.rows;
  });
  return table;
}

void ReadDatabase(AgentState& state) {
  V2::DataBase dataBase;
  const auto names = dataBase.ExecuteSentence(
      "select name from sqlite_master where type='table' and name not like 'sqlite_%'");
  for (const auto& row : names) {
    const std::string& name = boost::get<std::string>(row.at(0));
    if (TABLES_OF_KEYS.count(name) == 0) {
      state.tables[name] = ReadTable(dataBase, name);
      continue;
    }
    for (const auto& entry : dataBase.ExecuteSentence("select name, value from " + name)) {
      state.values[{name, boost::get<std::string>(entry.at(0))}] =
          boost::get<std::string>(entry.at(1));
    }
  }
}

AgentState::File ReadFile(const fs::path& path) {
  std::ifstream stream(path.string(), std::ios::binary);
  std::size_t hash = 0;
  char buffer[65536];
  while (stream.read(buffer, sizeof(buffer)), stream.gcount() > 0) {
    boost::hash_range(hash, buffer, buffer + stream.gcount());
  }
  return {fs::file_size(path), hash};
}

/// Such files hold no document, key or setting.
bool IsOfTheDatabaseOrLog(const std::string& file) {
  return boost::starts_with(file, SQLiteNames::SQLITE_CURRENT_DATABASE_NAME) ||
         boost::starts_with(file, std::string(LOG_FOLDER) + "/") || file == LOCK_FILE;
}

void ReadFiles(const fs::path& folder, AgentState& state) {
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!fs::is_regular_file(entry.symlink_status())) continue;
    const std::string name = entry.path().lexically_relative(folder).string();
    if (!IsOfTheDatabaseOrLog(name)) state.files[name] = ReadFile(entry.path());
  }
}

/// Calls `visit(key, before, after)` with pointers to the values for each key of two maps. Null:
/// the map has no such key.
template <class Map, class Visit>
void ForEachKey(const Map& before, const Map& after, Visit visit) {
  const auto find = [](const Map& map, const auto& key) {
    const auto found = map.find(key);
    return found == map.end() ? nullptr : &found->second;
  };
  std::set<typename Map::key_type> keys;
  for (const Map* map : {&before, &after}) {
    for (const auto& entry : *map) keys.insert(entry.first);
  }
  for (const auto& key : keys) visit(key, find(before, key), find(after, key));
}

template <class Value>
boost::optional<Value> Optional(const Value* value) {
  return value ? boost::make_optional(*value) : boost::none;
}

}  // namespace

AgentState ReadAgentState(const fs::path& dataFolder) {
  AgentState state;
  ReadDatabase(state);
  ReadFiles(dataFolder, state);
  return state;
}

StateChanges Compare(const AgentState& before, const AgentState& after) {
  StateChanges changes;
  ForEachKey(before.values, after.values,
             [&](const auto& key, const std::string* old, const std::string* fresh) {
               if (old && fresh && *old == *fresh) return;
               changes.values.push_back({key.first, key.second, Optional(old), Optional(fresh)});
             });
  ForEachKey(
      before.tables, after.tables,
      [&](const std::string& name, const AgentState::Table* old, const AgentState::Table* fresh) {
        if (!old || !fresh || old->fingerprint == fresh->fingerprint) return;
        changes.tables.push_back({name, old->rows, fresh->rows});
      });
  ForEachKey(
      before.files, after.files,
      [&](const std::string& name, const AgentState::File* old, const AgentState::File* fresh) {
        if (old && fresh && old->fingerprint == fresh->fingerprint) return;
        changes.files.push_back({name, old ? boost::make_optional(old->bytes) : boost::none,
                                 fresh ? boost::make_optional(fresh->bytes) : boost::none});
      });
  return changes;
}

}  // namespace Norvik::Cli
