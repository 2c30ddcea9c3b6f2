#include "platform/RemovalLook.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Norvik::Platform {

namespace {

namespace fs = std::filesystem;

std::string WithoutSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

fs::path FolderOf(const std::string& path) {
  const fs::path folder = fs::path(WithoutSlashes(path)).parent_path();
  return folder.empty() ? "." : folder;
}

/// Who may write in a folder may remove what is in it, unless the folder keeps that to the owners.
int FolderProblem(const fs::path& folder, const struct stat& entry) {
  struct stat status {};
  if (::stat(folder.c_str(), &status) != 0) return errno;
  if (::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0) return errno;
  const uid_t user = ::geteuid();
  const bool restricted = (status.st_mode & S_ISVTX) != 0 && user != 0;
  return restricted && user != entry.st_uid && user != status.st_uid ? EPERM : 0;
}

int ContentProblem(const std::string& folder, const std::set<std::string>& removed) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (removed.count(PlaceOf(entry->path().string())) == 0) return ENOTEMPTY;
  }
  return 0;
}

}  // namespace

std::string PlaceOf(const std::string& path) {
  std::error_code error;
  const fs::path folder = fs::canonical(FolderOf(path), error);
  return (folder / fs::path(WithoutSlashes(path)).filename()).string();
}

int RemovalProblem(const std::string& path, const std::set<std::string>& removed) {
  struct stat entry {};
  if (::lstat(path.c_str(), &entry) != 0) return errno;
  if (removed.count(PlaceOf(path)) != 0) return ENOENT;
  const std::string name = fs::path(WithoutSlashes(path)).filename().string();
  if (name == ".") return EINVAL;
  if (name == "..") return ENOTEMPTY;
  if (const int problem = FolderProblem(FolderOf(path), entry)) return problem;
  return S_ISDIR(entry.st_mode) ? ContentProblem(path, removed) : 0;
}

}  // namespace Norvik::Platform
