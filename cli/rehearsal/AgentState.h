#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Norvik::Cli {

/// What an agent keeps, at one moment.
struct AgentState {
  struct File {
    std::uintmax_t bytes = 0;
    std::uint64_t fingerprint = 0;
  };
  struct Table {
    std::uint64_t rows = 0;
    std::uint64_t fingerprint = 0;
  };

  /// Values of the tables of keys, by table and key.
  std::map<std::pair<std::string, std::string>, std::string> values;
  std::map<std::string, Table> tables;  ///< the others
  std::map<std::string, File> files;    ///< by their paths in the data folder
};

/// Looks at the files of a data folder and at the database of this process.
AgentState ReadAgentState(const boost::filesystem::path& dataFolder);

/// How a value, a table or a file differs between two states. What is absent is empty.
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
  std::string file;
  boost::optional<std::uintmax_t> bytesBefore;
  boost::optional<std::uintmax_t> bytesAfter;
};
struct StateChanges {
  std::vector<ValueChange> values;
  std::vector<TableChange> tables;
  std::vector<FileChange> files;
};

StateChanges Compare(const AgentState& before, const AgentState& after);

}  // namespace Norvik::Cli
