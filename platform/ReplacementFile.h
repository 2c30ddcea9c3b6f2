#pragma once

#include <string>

#include "platform/FileDescriptor.h"

namespace Norvik::Platform {

/// A new file, mode 0600, that replaces a target whole or not at all. Until it is committed it is
/// beside the target, with a hidden name and another extension; the destructor removes a file that
/// was not committed. Failures throw `std::system_error`.
class ReplacementFile {
 public:
  /// Creates the file. The folder of the target must exist.
  explicit ReplacementFile(const std::string& target);
  ReplacementFile(const ReplacementFile&) = delete;
  ReplacementFile& operator=(const ReplacementFile&) = delete;
  ~ReplacementFile();

  /// Where the new file is; empty after `Commit`.
  const std::string& Path() const { return path_; }
  /// For writing the content. A caller may write by `Path` instead.
  const FileDescriptor& Descriptor() const { return file_; }

  /// Replaces the target, after the content is on the disk.
  void Commit();
  /// The same if there is no target yet. Otherwise leaves the target and returns false.
  bool CommitIfAbsent();

 private:
  std::string target_;
  std::string folder_;
  std::string path_;  ///< empty when there is nothing to remove
  FileDescriptor file_;
};

/// Removes the files that a killed process did not commit, in a folder and in the folders below it
/// except hidden ones. No other process may be creating replacement files there. Files that cannot
/// be removed stay; nothing is thrown for them.
void RemoveLeftReplacements(const std::string& folder);

}  // namespace Norvik::Platform
