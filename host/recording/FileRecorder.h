#pragma once

#include <boost/filesystem/path.hpp>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace Norvik::Host {

/// Notes which files of the machine are asked for through `Platform::MachinePath`, until `Stop`.
/// One at a time.
class FileRecorder {
 public:
  FileRecorder();
  FileRecorder(const FileRecorder&) = delete;
  FileRecorder& operator=(const FileRecorder&) = delete;
  ~FileRecorder() { Stop(); }

  void Stop();
  /// Copies what was asked for below `root`, after `Stop`: files with their times, links to files
  /// with what they lead to, folders with the files directly in them. A path whose existence alone
  /// was asked for becomes an empty file or folder. Returns one line for each file that is too
  /// large or cannot be read: the recording is without it.
  std::vector<std::string> CopyTo(const boost::filesystem::path& root) const;

 private:
  std::mutex mutex_;
  std::map<std::string, bool> asked_;  ///< whether it was opened, by path
};

}  // namespace Norvik::Host
