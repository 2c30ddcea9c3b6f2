#include "platform/ExpectedErrors.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>

namespace Norvik::Platform {

namespace {

namespace fs = std::filesystem;

constexpr char DEFAULT_PATH[] = "/bin:/usr/bin";

std::string WithoutSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

fs::path FolderOf(const std::string& path) {
  const fs::path folder = fs::path(WithoutSlashes(path)).parent_path();
  return folder.empty() ? "." : folder;
}

/// Who may write in a folder may remove its entries, unless the folder restricts that to owners.
int FolderError(const fs::path& folder, const struct stat& entry) {
  struct stat status {};
  if (::stat(folder.c_str(), &status) != 0) return errno;
  if (::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0) return errno;
  const uid_t user = ::geteuid();
  const bool restricted = (status.st_mode & S_ISVTX) != 0 && user != 0;
  return restricted && user != entry.st_uid && user != status.st_uid ? EPERM : 0;
}

int ContentError(const std::string& folder, const std::set<std::string>& removed) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (removed.count(CanonicalEntry(entry->path().string())) == 0) return ENOTEMPTY;
  }
  return 0;
}

int ProgramError(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return EACCES;
  return ::access(path.c_str(), X_OK) == 0 ? 0 : errno;
}

/// A file that may not be run does not end the search, but gives the error if nothing else is
/// found.
int SearchError(const std::string& program) {
  const char* const path = std::getenv("PATH");
  std::istringstream folders(path ? path : DEFAULT_PATH);
  int error = ENOENT;
  for (std::string folder; std::getline(folders, folder, ':');) {
    const int found = ProgramError((folder.empty() ? "." : folder) + "/" + program);
    if (found == 0) return 0;
    if (found == EACCES) error = EACCES;
  }
  return error;
}

bool CanBecome(const ChildAccount& account) {
  return ::geteuid() == 0 || (::geteuid() == account.user && ::getegid() == account.group);
}

}  // namespace

int ExpectedRemovalError(const std::string& path, const std::set<std::string>& removed) {
  struct stat entry {};
  if (::lstat(path.c_str(), &entry) != 0) return errno;
  if (removed.count(CanonicalEntry(path)) != 0) return ENOENT;
  const std::string name = fs::path(WithoutSlashes(path)).filename().string();
  if (name == ".") return EINVAL;
  if (name == "..") return ENOTEMPTY;
  if (const int error = FolderError(FolderOf(path), entry)) return error;
  return S_ISDIR(entry.st_mode) ? ContentError(path, removed) : 0;
}

std::string CanonicalEntry(const std::string& path) {
  std::error_code error;
  const fs::path folder = fs::canonical(FolderOf(path), error);
  return (folder / fs::path(WithoutSlashes(path)).filename()).string();
}

int ExpectedStartError(const ChildCommand& command) {
  if (command.account && !CanBecome(*command.account)) return EPERM;
  const std::string& program = command.words.front();
  if (program.find('/') == std::string::npos) return SearchError(program);
  // A child of another account starts in that account's home.
  const bool fromHome = command.account && program.front() != '/';
  return ProgramError(fromHome ? command.account->home + "/" + program : program);
}

}  // namespace Norvik::Platform
