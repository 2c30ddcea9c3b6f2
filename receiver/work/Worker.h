#pragma once

#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "common/files/OpeningKeys.h"
#include "receiver/database/Session.h"
#include "receiver/files/FolderLock.h"
#include "receiver/files/UploadFolder.h"

namespace Norvik::Receiver {

struct WorkerOptions {
  std::string data;
  std::string database;
  std::string keys;  ///< folder of private keys
  unsigned int threads = 2;
  bool keepFiles = false;  ///< also those whose document is stored
};

/// Opens the files that agents have sent, each agent's in their order, and stores their documents.
/// What cannot be used is put aside with its reason. After a failure of the database or the disk it
/// waits and goes on.
class Worker {
 public:
  /// Throws `std::runtime_error` if there is no private key, or if another process works on the
  /// same database where only one can.
  explicit Worker(const WorkerOptions& options);
  /// Waits for the documents that are being stored.
  ~Worker();

  /// A file has arrived. Safe on any thread.
  void Wake();

 private:
  void Run();
  bool WaitOrStop(unsigned int milliseconds);
  /// False if nothing waits.
  bool TakeNext(Session& session);
  std::string TextIn(const std::string& agent, const std::string& sha256) const;

  const WorkerOptions options_;
  const std::string unpacked_;  ///< folder of archives while they are read
  const UploadFolder files_;
  const Common::OpeningKeys keys_;
  std::optional<FolderLock> lock_;
  std::mutex mutex_;
  std::condition_variable wake_;
  unsigned long long arrivals_ = 0;
  bool stops_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace Norvik::Receiver
