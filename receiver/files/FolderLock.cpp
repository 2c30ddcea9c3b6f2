#include "receiver/files/FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <stdexcept>

#include "platform/FileSystem.h"

namespace Norvik::Receiver {

FolderLock::FolderLock(const std::string& folder, const std::string& name) {
  const std::string path = folder + "/" + name + ".lock";
  file_ = Platform::FileDescriptor(::open(path.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600));
  if (!file_.IsOpen()) Platform::ThrowSystemError(errno, path);
  if (::flock(file_.Get(), LOCK_EX | LOCK_NB) != 0) {
    throw std::runtime_error("Another process holds " + path);
  }
}

}  // namespace Norvik::Receiver
