#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Norvik::Cli {

/// What an agent stores, at one moment. Large content is kept as a fingerprint: a hash that is
/// comparable within one process only.
struct AgentState {
  struct File {
    std::uintmax_t bytes = 0;
    std::uint64_t fingerprint = 0;
  };
  struct Table {
    std::uint64_t rows = 0;
    std::uint64_t fingerprint = 0;
  };

  /// Values of the key-value tables, by table and key.
  std::map<std::pair<std::string, std::string>, std::string> values;
  std::map<std::string, Table> tables;  ///< all other tables
  std::map<std::string, File> files;    ///< by path relative to the data folder
};

/// Reads the files of a data folder, except the database, the log and the lock, and the tables of
/// the database that this process has open. Throws a subclass of `std::exception` if something
/// cannot be read.
AgentState ReadAgentState(const boost::filesystem::path& dataFolder);

// How a value, a table or a file differs between two states. An empty value means that the state
// does not have it.

struct ValueChange {
  std::string table;
  std::string key;
  boost::optional<std::string> before;
  boost::optional<std::string> after;
};
struct TableChange {
  std::string table;
  std::uint64_t rowsBefore = 0;
  std::uint64_t rowsAfter = 0;
};
struct FileChange {
  std::string file;  ///< path relative to the data folder
  boost::optional<std::uintmax_t> bytesBefore;
  boost::optional<std::uintmax_t> bytesAfter;
};
struct StateChanges {
  std::vector<ValueChange> values;
  std::vector<TableChange> tables;
  std::vector<FileChange> files;
};

/// Each list is sorted by its keys. Tables that only one of the states has are left out.
StateChanges Compare(const AgentState& before, const AgentState& after);

}  // namespace Norvik::Cli
