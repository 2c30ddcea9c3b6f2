#include "host/rehearsal/DataFolderCopy.h"

#include <stdlib.h>

#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "common/database/DatabaseCopy.h"
#include "common/database/SQLiteNames.h"
#include "host/DataFolder.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

constexpr const char* FILES[] = {IDENTITY_FILE, CONFIGURATION_FILE};
constexpr const char* DOCUMENT_FOLDERS[] = {"work", "previous", "outbox"};

/// In the data folder itself if there is one, since what it holds is not for others to see.
fs::path MakeFolder(const fs::path& original) {
  const fs::path place = fs::is_directory(original) ? original : fs::temp_directory_path();
  std::string pattern = (place / ".rehearsal-XXXXXX").string();
  if (!::mkdtemp(pattern.data())) {
    throw std::runtime_error("cannot make a folder like " + pattern + ": " + std::strerror(errno));
  }
  return fs::canonical(pattern);
}

/// @param wanted which names to take; what is no regular file is passed over
template <class Predicate>
void CopyFiles(const fs::path& from, const fs::path& to, Predicate wanted) {
  if (!fs::is_directory(from)) return;
  fs::create_directories(to);
  fs::permissions(to, fs::owner_all);
  for (const auto& entry : fs::directory_iterator(from)) {
    const fs::path name = entry.path().filename();
    if (!fs::is_regular_file(entry.symlink_status()) || !wanted(name)) continue;
    fs::copy_file(entry.path(), to / name);
    fs::last_write_time(to / name, fs::last_write_time(entry.path()));
  }
}

}  // namespace

DataFolderCopy::DataFolderCopy(const fs::path& original) : path_(MakeFolder(original)) {
  try {
    CopyFrom(original);
  } catch (...) {
    boost::system::error_code ignored;
    fs::remove_all(path_, ignored);
    throw;
  }
}

DataFolderCopy::~DataFolderCopy() {
  boost::system::error_code ignored;
  fs::remove_all(path_, ignored);
}

void DataFolderCopy::CopyFrom(const fs::path& original) const {
  for (const char* name : FILES) {
    if (fs::exists(original / name)) fs::copy_file(original / name, path_ / name);
  }
  const auto isPublic = [](const fs::path& name) { return name.extension() == ".pub"; };
  CopyFiles(original / KEY_FOLDER, path_ / KEY_FOLDER, isPublic);
  const auto any = [](const fs::path&) { return true; };
  for (const char* name : DOCUMENT_FOLDERS) CopyFiles(original / name, path_ / name, any);
  const fs::path dataBase = original / Common::SQLiteNames::SQLITE_CURRENT_DATABASE_NAME;
  if (fs::exists(dataBase)) Common::CopyDatabase(dataBase, path_ / dataBase.filename());
}

}  // namespace Norvik::Host
