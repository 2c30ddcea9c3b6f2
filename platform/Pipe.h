#pragma once

#include "platform/FileDescriptor.h"

namespace Norvik::Platform {

/// Both ends of a pipe, above the standard channels and closed on exec.
struct Pipe {
  FileDescriptor read;
  FileDescriptor write;

  /// False, with `errno` set, if no pipe could be made.
  bool Open();
};

}  // namespace Norvik::Platform
