#include "platform/FileDescriptor.h"

#include <fcntl.h>

namespace Norvik::Platform {

namespace {

/// A process that was started without standard channels would get their numbers for its pipes, and
/// its children would take the pipes for those channels.
FileDescriptor AboveStandard(const FileDescriptor& descriptor) {
  return FileDescriptor(::fcntl(descriptor.Get(), F_DUPFD_CLOEXEC, 3));
}

}  // namespace

bool Pipe::Open() {
  int ends[2];
  if (::pipe(ends) != 0) return false;
  const FileDescriptor readEnd(ends[0]);
  const FileDescriptor writeEnd(ends[1]);
  read = AboveStandard(readEnd);
  if (read.IsOpen()) write = AboveStandard(writeEnd);
  return write.IsOpen();
}

}  // namespace Norvik::Platform
