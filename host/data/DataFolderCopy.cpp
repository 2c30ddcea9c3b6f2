#include "host/data/DataFolderCopy.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "common/database/AgentDatabase.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

constexpr const char* FILES[] = {IDENTITY_FILE, CONFIGURATION_FILE};
constexpr const char* DOCUMENT_FOLDERS[] = {"work", "previous", "outbox"};

constexpr char PREFIX[] = ".rehearsal-";

/// Prevents a copy from being made while old ones are removed: a new copy is not locked yet.
class SweepLock {
 public:
  explicit SweepLock(const fs::path& folder)
      : file_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (file_.IsOpen()) ::flock(file_.Get(), LOCK_EX);
  }

 private:
  Platform::FileDescriptor file_;
};

bool IsInUse(const fs::path& copy) {
  try {
    const DataFolderLock lock(copy);
    return false;
  } catch (const std::runtime_error&) {
    return true;
  }
}

/// Inside the data folder, if it exists, since its content is private.
fs::path MakeFolder(const fs::path& original) {
  const fs::path place = fs::is_directory(original) ? original : fs::temp_directory_path();
  std::string pattern = (place / PREFIX).string() + "XXXXXX";
  if (!::mkdtemp(pattern.data())) {
    throw std::runtime_error("cannot make a folder like " + pattern + ": " + std::strerror(errno));
  }
  return fs::canonical(pattern);
}

/// Copies the regular files with their times.
/// @param wanted returns whether to copy a file of this name
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

DataFolderCopy::DataFolderCopy(const fs::path& original) {
  RemoveLeftCopies(original);
  {
    const SweepLock lock(original);
    path_ = MakeFolder(original);
    lock_ = std::make_unique<const DataFolderLock>(path_);
  }
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

void RemoveLeftCopies(const fs::path& dataFolder) {
  const SweepLock lock(dataFolder);
  boost::system::error_code ignored;
  for (fs::directory_iterator item(dataFolder, ignored), end; item != end;
       item.increment(ignored)) {
    const fs::path& path = item->path();
    if (!boost::starts_with(path.filename().string(), PREFIX)) continue;
    if (fs::is_directory(item->symlink_status()) && !IsInUse(path)) fs::remove_all(path, ignored);
  }
}

}  // namespace Norvik::Host
