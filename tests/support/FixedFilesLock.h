#pragma once

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <boost/filesystem/operations.hpp>

namespace Norvik::Tests {

/// Collectors write files of fixed names in /tmp. Tests that reach them hold this, so that those of
/// other programs that run at the same time wait.
class FixedFilesLock {
 public:
  FixedFilesLock()
      : file_(::open((boost::filesystem::temp_directory_path() / "norvik-tests.lock").c_str(),
                     O_CREAT | O_RDWR | O_CLOEXEC, 0666)) {
    ::flock(file_, LOCK_EX);
  }
  ~FixedFilesLock() { ::close(file_); }
  FixedFilesLock(const FixedFilesLock&) = delete;
  FixedFilesLock& operator=(const FixedFilesLock&) = delete;

 private:
  const int file_;
};

}  // namespace Norvik::Tests
