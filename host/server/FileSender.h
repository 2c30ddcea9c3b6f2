#pragma once

#include <atomic>
#include <memory>

#include "host/history/DocumentHistory.h"
#include "host/server/Attempt.h"
#include "host/server/OutboxFiles.h"
#include "host/server/ServerSession.h"

namespace Norvik::Host {

/// Sends a file of the outbox from the disk, and deletes it after the server has acknowledged its
/// size and checksum. A file that no longer exists counts as acknowledged; one that is not sealed,
/// or cannot be read or deleted, counts as refused. One that was sealed to the agent's own key, for
/// want of the server's, is sealed to the server's first: that must exist. The history, unless it
/// is null, follows all that. Memory does not grow with the file. For one thread.
class FileSender {
 public:
  /// @param stopped ends the sending of a file; must outlive the sender
  FileSender(std::shared_ptr<ServerSession> session, boost::filesystem::path keyFolder,
             std::shared_ptr<DocumentHistory> history, const std::atomic<bool>& stopped);

  Attempt Send(HttpClient& client, const OutboxFile& file);

 private:
  void SealForServer(const boost::filesystem::path& file) const;

  const std::shared_ptr<ServerSession> session_;
  const boost::filesystem::path keyFolder_;
  const std::shared_ptr<DocumentHistory> history_;
  const std::atomic<bool>& stopped_;
};

}  // namespace Norvik::Host
