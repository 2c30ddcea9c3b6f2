#pragma once

#include <sys/types.h>

#include <boost/filesystem/path.hpp>

#include "platform/FileDescriptor.h"

namespace Norvik::Host {

/// Has a folder or a file removed if this process ends while the object exists, however it ends: a
/// process of its own waits for that. Without it, if it cannot be started, nothing is removed.
class RemovalOnDeath {
 public:
  explicit RemovalOnDeath(const boost::filesystem::path& path);
  RemovalOnDeath(const RemovalOnDeath&) = delete;
  RemovalOnDeath& operator=(const RemovalOnDeath&) = delete;
  ~RemovalOnDeath();

 private:
  Platform::Pipe pipe_;  ///< at its end without a line this process has died
  pid_t remover_ = -1;
};

}  // namespace Norvik::Host
