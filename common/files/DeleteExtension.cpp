#include "common/files/DeleteExtension.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/format.hpp>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <memory>
#include <set>
#include <utility>

#include "common/log/Logger.h"
#include "platform/FileDescriptor.h"
#include "platform/SystemChanges.h"

namespace Norvik::Common {

namespace {

using Platform::FileDescriptor;

/// Identifies a file, whatever path leads to it.
using Identity = std::pair<dev_t, ino_t>;

Identity IdentityOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

void LogFailure(const std::string& what, const std::string& path) {
  NORVIK_WARNING(boost::format("Unable to %1% %2%: %3%") % what % path % std::strerror(errno));
}

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

/// The names in a folder. All are read before anything is deleted: on some file systems a reader
/// that deletes skips entries.
std::vector<std::string> NamesIn(const FileDescriptor& folder, const std::string& path) {
  std::vector<std::string> names;
  // The stream closes its descriptor, so it gets a duplicate.
  FileDescriptor own(::fcntl(folder.Get(), F_DUPFD_CLOEXEC, 3));
  const std::unique_ptr<DIR, CloseFolder> stream(own.IsOpen() ? ::fdopendir(own.Get()) : nullptr);
  if (!stream) {
    LogFailure("read the folder", path);
    return names;
  }
  own.Release();
  errno = 0;
  while (const dirent* entry = ::readdir(stream.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
    errno = 0;
  }
  if (errno != 0) LogFailure("read the folder", path);
  return names;
}

/// Opens folders relative to the descriptors of their parents, never by whole paths: a user could
/// replace a folder by a link while this deletes below it.
class ExtensionSweep {
 public:
  ExtensionSweep(const std::string& ending, std::set<Identity> excluded)
      : ending_(ending), excluded_(std::move(excluded)) {}

  void SweepBelow(int parent, const std::string& name, const std::string& path,
                  int depth = 0) const {
    // Each level needs a descriptor and some stack, and a user may nest folders without limit.
    if (depth > MAX_DEPTH) {
      NORVIK_WARNING(boost::format("The folder %1% lies too deep and is passed over") % path);
      return;
    }
    const FileDescriptor folder(
        ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder.IsOpen()) {
      LogFailure("open the folder", path);
      return;
    }
    for (const auto& entry : NamesIn(folder, path)) {
      VisitEntry(folder.Get(), entry, path + "/" + entry, depth);
    }
  }

 private:
  static constexpr int MAX_DEPTH = 200;

  void VisitEntry(int folder, const std::string& name, const std::string& path, int depth) const {
    struct stat status {};
    if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
      if (errno != ENOENT) LogFailure("look at", path);
      return;
    }
    if (excluded_.count(IdentityOf(status)) != 0) return;
    if (S_ISDIR(status.st_mode)) {
      SweepBelow(folder, name, path, depth + 1);
    } else if (S_ISREG(status.st_mode) && HasEnding(name)) {
      if (!Delete(folder, name, path)) LogFailure("delete", path);
    }
  }

  static bool Delete(int folder, const std::string& name, const std::string& path) {
    return Platform::GetSystemChanges()->RemoveAt(folder, name, path) == 0;
  }

  /// A name that consists of the ending is a hidden file without an extension.
  bool HasEnding(const std::string& name) const {
    return name.size() > ending_.size() &&
           name.compare(name.size() - ending_.size(), ending_.size(), ending_) == 0;
  }

  std::string ending_;
  std::set<Identity> excluded_;
};

/// The excluded entries that exist, and the targets of those that are links. "." and ".." mean the
/// listed folder and its parent, which no walk downwards meets as entries.
std::set<Identity> IdentitiesOf(const std::vector<boost::filesystem::path>& paths) {
  std::set<Identity> identities;
  struct stat status {};
  for (const auto& path : paths) {
    const std::string& text = path.string();
    const std::string name = text.substr(text.rfind('/') + 1);
    if (name == "." || name == "..") continue;
    if (::lstat(path.c_str(), &status) == 0) identities.insert(IdentityOf(status));
    if (::stat(path.c_str(), &status) == 0) identities.insert(IdentityOf(status));
  }
  return identities;
}

/// Whether the folder or one above it is excluded.
bool IsBelow(const boost::filesystem::path& folder, const std::set<Identity>& excluded) {
  std::string path = folder.string();
  struct stat status {};
  Identity former{};
  while (::stat(path.c_str(), &status) == 0 && IdentityOf(status) != former) {
    former = IdentityOf(status);
    if (excluded.count(former) != 0) return true;
    path += "/..";
  }
  return false;
}

}  // namespace

void DeleteExtensionInPath(const std::string& extension, const boost::filesystem::path& folder,
                           const std::vector<boost::filesystem::path>& excluded) {
  const std::string ending = extension.substr(0, 1) == "." ? extension : "." + extension;
  if (ending.size() < 2) {
    NORVIK_WARNING("No extension is given: nothing is deleted");
    return;
  }
  const std::set<Identity> identities = IdentitiesOf(excluded);
  if (IsBelow(folder, identities)) return;
  ExtensionSweep(ending, identities).SweepBelow(AT_FDCWD, folder.string(), folder.string());
}

}  // namespace Norvik::Common
