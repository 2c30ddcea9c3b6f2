#include "host/support/DataFolderContent.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <stdexcept>
#include <utility>

#include "common/database/AgentDatabase.h"
#include "common/database/DataBase.h"
#include "common/files/SealedStart.h"
#include "common/files/TextFile.h"
#include "host/HostError.h"
#include "host/OutputText.h"
#include "host/data/DataFolder.h"
#include "json/Nesting.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;
using Kind = BundleFile::Kind;

constexpr std::size_t MAX_DOCUMENT = std::size_t{16} << 20;
constexpr int MAX_ROWS = 1000;

/// Runs an action; what it throws is why the file is left out.
template <class Action>
void Noting(const std::string& name, BundleContent& content, Action action) {
  try {
    action();
  } catch (const std::exception& error) {
    content.leftOut.push_back({name, ReasonOf(error)});
  }
}

/// The plain files of a folder, the newest first; links and the like are left out.
std::vector<fs::path> FilesOf(const fs::path& folder, BundleContent& content) {
  std::vector<std::pair<std::time_t, fs::path>> files;
  boost::system::error_code error;
  for (fs::directory_iterator item(folder, error), end; !error && item != end;
       item.increment(error)) {
    boost::system::error_code gone;
    const fs::path& path = item->path();
    if (fs::is_regular_file(item->symlink_status(gone))) {
      files.emplace_back(-fs::last_write_time(path, gone), path);
    } else {
      content.leftOut.push_back({(folder.filename() / path.filename()).string(), "no plain file"});
    }
  }
  if (error && error != boost::system::errc::no_such_file_or_directory) {
    content.leftOut.push_back({folder.filename().string(), error.message()});
  }
  std::sort(files.begin(), files.end());
  std::vector<fs::path> paths;
  for (auto& file : files) paths.push_back(std::move(file.second));
  return paths;
}

/// The last whole lines of a log.
BundleFile EndOf(const fs::path& file, const std::string& name, std::size_t limit) {
  fs::ifstream stream(file, std::ios::binary | std::ios::ate);
  if (!stream) throw std::runtime_error("it cannot be read");
  const auto size = static_cast<std::size_t>(stream.tellg());
  const std::size_t begin = size > limit ? size - limit : 0;
  stream.seekg(static_cast<std::streamoff>(begin));
  std::string text(size - begin, '\0');
  stream.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(stream.gcount()));
  if (begin > 0) text.erase(0, text.find('\n') + 1);
  const std::size_t cut = begin > 0 ? size - std::min(size, text.size()) : 0;
  return {name, Kind::LOG, std::move(text), cut};
}

/// The agent's own log may hold any byte; of other files only texts are taken.
bool IsTextFile(const fs::path& file, const std::string& text) {
  if (boost::starts_with(file.filename().string(), "agent.") && file.extension() == ".log") {
    return true;
  }
  return text.find('\0') == std::string::npos && !boost::starts_with(text, "PK\x03\x04") &&
         !boost::starts_with(text, "\x1f\x8b") && !boost::starts_with(text, "BZh") &&
         !boost::starts_with(text, "bplist");
}

void AddLogs(const fs::path& folder, std::size_t limit, BundleContent& content) {
  for (const fs::path& file : FilesOf(folder, content)) {
    const std::string name = (folder.filename() / file.filename()).string();
    Noting(name, content, [&] {
      BundleFile log = EndOf(file, name, limit);
      if (!IsTextFile(file, log.content)) throw std::runtime_error("it is no text");
      content.files.push_back(std::move(log));
    });
  }
}

std::string SealText(const fs::path& file) {
  const Common::SealedStart start = Common::SealedStartOf(file);
  return start.NamesKey() ? "it is sealed to the key " + Common::FingerprintOf(start.key)
                          : "it is sealed";
}

void AddPrevious(const fs::path& folder, BundleContent& content) {
  for (const fs::path& file : FilesOf(folder, content)) {
    const std::string name = (folder.filename() / file.filename()).string();
    Noting(name, content, [&] {
      if (Common::IsSealedFile(file)) throw std::runtime_error(SealText(file));
      content.files.push_back({name, Kind::DOCUMENT, Common::ReadTextFile(file, MAX_DOCUMENT), 0});
    });
  }
}

OrderedJson CellOf(const std::string& text) {
  const bool isJson = !text.empty() && (text[0] == '{' || text[0] == '[') &&
                      !::json::NestsDeeperThan(text, MAX_NESTING);
  const OrderedJson value = isJson ? OrderedJson::parse(text, nullptr, false) : OrderedJson();
  return value.is_structured() ? value : OrderedJson(text);
}

/// A table of names and values as one object, so that a value is known by its name.
OrderedJson JsonOf(const Common::DbResponseTable& table) {
  const bool isNamed = table.columns.size() >= 2 && table.columns.back().name == "value" &&
                       table.columns[table.columns.size() - 2].name == "name";
  OrderedJson list = isNamed ? OrderedJson::object() : OrderedJson::array();
  for (const auto& row : table.rows) {
    if (isNamed) {
      list[row[row.size() - 2]] = CellOf(row.back());
      continue;
    }
    OrderedJson record = OrderedJson::object();
    for (std::size_t at = 0; at < row.size(); ++at) {
      record[table.columns[at].name] = CellOf(row[at]);
    }
    list.push_back(std::move(record));
  }
  return list;
}

void AddTables(const fs::path& folder, BundleContent& content) {
  if (!fs::exists(folder / Common::SQLiteNames::SQLITE_CURRENT_DATABASE_NAME)) return;
  Common::AgentDatabase database(folder, Common::AgentDatabase::Access::ReadOnly);
  Common::V2::DataBase reader;
  for (const auto& row : reader.ExecuteSentence(
           "select name from sqlite_master where type = 'table' order by name")) {
    const auto& name = boost::get<std::string>(row.at(0));
    const std::string file = "database/" + name + ".json";
    Noting(file, content, [&] {
      const auto counted = reader.ExecuteSentence("select count(*) from \"" + name + "\"");
      const int count = boost::get<int>(counted.at(0).at(0));
      // The names of all files of the machine.
      if (boost::starts_with(name, "RUD2_FILE") || boost::starts_with(name, "RUD2_LAST")) {
        if (count == 0) return;
        throw std::runtime_error(std::to_string(count) + " rows of the file inventory");
      }
      const int skipped = std::max(count - MAX_ROWS, 0);
      if (skipped > 0) {
        content.leftOut.push_back({file, "the first " + std::to_string(skipped) + " rows"});
      }
      const auto table = database.GetTable(name, skipped, MAX_ROWS, 0);
      const OrderedJson rows = table ? JsonOf(*table) : OrderedJson::array();
      content.files.push_back({file, Kind::JSON, JsonLine(rows), 0});
    });
  }
}

}  // namespace

void AddDataFolder(const fs::path& folder, std::size_t limit, BundleContent& content) {
  Noting(CONFIGURATION_FILE, content, [&] {
    const fs::path file = folder / CONFIGURATION_FILE;
    if (!fs::exists(file)) return;
    content.files.push_back({CONFIGURATION_FILE, Kind::JSON, Common::ReadTextFile(file), 0});
  });
  Noting("database", content, [&] { AddTables(folder, content); });
  AddPrevious(folder / "previous", content);
  AddLogs(folder / LOG_FOLDER, limit, content);
}

}  // namespace Norvik::Host
