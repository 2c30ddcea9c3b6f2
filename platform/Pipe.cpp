#include "platform/Pipe.h"

#include <fcntl.h>
#include <unistd.h>

namespace Norvik::Platform {

namespace {

/// In a process that was started without standard channels a pipe could take their place, and a
/// child would then get it for the channel of that number.
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
