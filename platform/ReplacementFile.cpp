#include "platform/ReplacementFile.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <regex>
#include <system_error>

#include "platform/FileSystem.h"

namespace Norvik::Platform {

namespace {

constexpr char INFIX[] = ".new-";

}  // namespace

ReplacementFile::ReplacementFile(const std::string& target) : target_(target) {
  const std::filesystem::path path(target);
  folder_ = path.has_parent_path() ? path.parent_path().string() : ".";
  path_ = folder_ + "/." + path.filename().string() + INFIX + "XXXXXX";
  file_ = FileDescriptor(::mkstemp(path_.data()));
  if (!file_.IsOpen()) {
    const int error = errno;
    path_.clear();
    ThrowSystemError(error, "Cannot make a file in " + folder_);
  }
  ::fcntl(file_.Get(), F_SETFD, FD_CLOEXEC);
}

ReplacementFile::~ReplacementFile() {
  if (!path_.empty()) ::unlink(path_.c_str());
}

void ReplacementFile::Commit() {
  // By the name, not the descriptor: who was given the name may have replaced the file.
  SyncFile(OpenRegularFile(path_));
  if (std::rename(path_.c_str(), target_.c_str()) != 0) ThrowSystemError(errno, target_);
  path_.clear();
  SyncFolder(folder_);
}

bool ReplacementFile::CommitIfAbsent() {
  SyncFile(OpenRegularFile(path_));
  if (::link(path_.c_str(), target_.c_str()) != 0) {
    if (errno == EEXIST) return false;
    ThrowSystemError(errno, target_);
  }
  SyncFolder(folder_);
  return true;
}

void RemoveLeftReplacements(const std::string& folder) {
  static const std::regex NAME(std::string("\\..+\\") + INFIX + "[[:alnum:]]{6}");
  std::error_code error;
  std::filesystem::recursive_directory_iterator entry(folder, error);
  for (; !error && entry != std::filesystem::recursive_directory_iterator();
       entry.increment(error)) {
    const auto& path = entry->path();
    const std::string name = path.filename().string();
    if (std::regex_match(name, NAME)) ::unlink(path.c_str());
    if (name.front() == '.') entry.disable_recursion_pending();
  }
}

}  // namespace Norvik::Platform
