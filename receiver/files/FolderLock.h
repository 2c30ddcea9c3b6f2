#pragma once

#include <string>

#include "platform/FileDescriptor.h"

namespace Norvik::Receiver {

/// Held by one process at a time, and gone with it.
class FolderLock {
 public:
  /// Throws `std::runtime_error` if another process holds it.
  FolderLock(const std::string& folder, const std::string& name);

 private:
  Platform::FileDescriptor file_;
};

}  // namespace Norvik::Receiver
