#include "common/files/Paths.h"

#include <sys/stat.h>

#include <boost/filesystem/operations.hpp>
#include <cerrno>

namespace Norvik::Common {

namespace {

namespace fs = boost::filesystem;

fs::path& DataFolder() {
  static fs::path folder = "/opt/local/norvik/data";
  return folder;
}

const char* NameOf(Paths::Type type) {
  switch (type) {
    case Paths::WORK:
      return "work";
    case Paths::PREVIOUS_INVENTORY:
      return "previous";
    case Paths::OUTBOX:
      return "outbox";
    case Paths::DATA:
      break;
  }
  return nullptr;
}

/// Creates a folder that only this account can enter, from the beginning.
void MakePrivate(const fs::path& folder) {
  if (::mkdir(folder.c_str(), S_IRWXU) == 0) return;
  const int error = errno;
  if (error == EEXIST && fs::is_directory(folder)) return;
  throw fs::filesystem_error("Cannot make the folder", folder,
                             boost::system::error_code(error, boost::system::system_category()));
}

}  // namespace

Paths::Paths(const Type& type, bool create) {
  const fs::path& data = DataFolder();
  const char* const name = NameOf(type);
  path_ = name ? data / name : data;
  if (!create) return;
  if (data.has_parent_path()) fs::create_directories(data.parent_path());
  MakePrivate(data);
  if (name) MakePrivate(path_);
}

void Paths::SetDataFolder(const boost::filesystem::path& folder) {
  // With a slash at the end, the parent of "data/" would be "data".
  fs::path plain = fs::absolute(folder);
  while (plain.filename() == "." && plain.has_parent_path()) plain = plain.parent_path();
  DataFolder() = plain;
}

}  // namespace Norvik::Common
