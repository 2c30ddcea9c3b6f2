#pragma once

#include <string>

#include "platform/FileDescriptor.h"

namespace Norvik::Platform {

/// A new file, mode 0600, that takes the place of a target whole or not at all. It lies beside the
/// target under a hidden name with another extension until then; the destructor removes it unless
/// it has taken the target's place. What fails raises `std::system_error`.
class ReplacementFile {
 public:
  explicit ReplacementFile(const std::string& target);
  ReplacementFile(const ReplacementFile&) = delete;
  ReplacementFile& operator=(const ReplacementFile&) = delete;
  ~ReplacementFile();

  const std::string& Path() const { return path_; }
  const FileDescriptor& Descriptor() const { return file_; }

  /// Takes the target's place, with its content on the disk.
  void Commit();
  /// The same unless there is a target already; false then.
  bool CommitIfAbsent();

 private:
  std::string target_;
  std::string folder_;
  std::string path_;  ///< empty when there is nothing to remove
  FileDescriptor file_;
};

/// Removes what replacement files of a process that was killed have left in the folder and in its
/// folders but for hidden ones, where no other process may be making any. What cannot be removed
/// stays.
void RemoveLeftReplacements(const std::string& folder);

}  // namespace Norvik::Platform
