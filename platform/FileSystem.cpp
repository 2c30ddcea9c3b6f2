#include "platform/FileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/SystemChanges.h"

namespace Norvik::Platform {

void ThrowSystemError(int error, const std::string& what) {
  throw std::system_error(error, std::generic_category(), what);
}

FileDescriptor OpenRegularFile(const std::string& path) {
  // Without waiting, or a named pipe in the file's place would block the caller.
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  if (!file.IsOpen()) ThrowSystemError(errno, path);
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0) ThrowSystemError(errno, path);
  if (S_ISDIR(status.st_mode)) ThrowSystemError(EISDIR, path);
  if (!S_ISREG(status.st_mode)) ThrowSystemError(EINVAL, path);
  return file;
}

std::size_t ReadFull(const FileDescriptor& file, char* buffer, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t length = ::read(file.Get(), buffer + done, size - done);
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) ThrowSystemError(errno, "Reading failed");
    if (length == 0) break;
    done += static_cast<std::size_t>(length);
  }
  return done;
}

void WriteAll(const FileDescriptor& file, const char* data, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t length = ::write(file.Get(), data + done, size - done);
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) ThrowSystemError(errno, "Writing failed");
    done += static_cast<std::size_t>(length);
  }
}

void SyncFile(const FileDescriptor& file) {
  if (GetSystemChanges()->Sync(file.Get()) != 0) ThrowSystemError(errno, "Syncing failed");
}

void SyncFolder(const std::string& folder) {
  const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY));
  if (opened.IsOpen()) GetSystemChanges()->Sync(opened.Get());
}

}  // namespace Norvik::Platform
