#pragma once

#include <atomic>
#include <memory>

#include "host/server/Attempt.h"
#include "host/server/OutboxFiles.h"
#include "host/server/ServerSession.h"

namespace Norvik::Host {

/// Sends a file of the outbox, from the disk, and deletes it once the server has acknowledged its
/// size and its checksum. A file that is gone counts as acknowledged; one that is not sealed, or
/// cannot be read or deleted, as refused. Memory does not grow with the file. Not for two threads
/// at once.
class FileSender {
 public:
  /// @param stopped ends the sending of a file; must outlive the sender
  FileSender(std::shared_ptr<ServerSession> session, const std::atomic<bool>& stopped);

  Attempt Send(HttpClient& client, const OutboxFile& file);

 private:
  const std::shared_ptr<ServerSession> session_;
  const std::atomic<bool>& stopped_;
};

}  // namespace Norvik::Host
