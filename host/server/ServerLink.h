#pragma once

#include <atomic>
#include <memory>

#include "common/rest/ICommunicationSystem.h"
#include "host/server/Delivery.h"
#include "host/server/PacedThread.h"
#include "host/server/ServerOptions.h"
#include "host/server/ServerSession.h"
#include "host/server/StatusQueue.h"

namespace Norvik::Host {

/// The road to the management server, over HTTPS, as docs/server-protocol.md describes it. Belongs
/// into the service alone: one for a data folder. Safe on any thread.
///
/// Questions are asked on the thread that asks, also before `Start`. States of tasks wait in a file
/// of the data folder; they and the files of the outbox are delivered between `Start` and `Stop`,
/// by a thread that sleeps while there is nothing to do.
class ServerLink : public Common::ICommunicationSystem {
 public:
  /// Sends nothing. Raises a subclass of `std::exception` if the states that wait cannot be read.
  explicit ServerLink(const ServerOptions& options);
  ServerLink(const ServerLink&) = delete;
  ServerLink& operator=(const ServerLink&) = delete;
  ~ServerLink() override;

  /// Begins the delivery, with what waits already.
  void Start();
  /// Ends the delivery, and every question that is on its way, without waiting for the server; what
  /// is not acknowledged stays. From then on questions find no answer. Final.
  void Stop();
  /// Sends the states that wait, on this thread, for a process that never starts the delivery.
  /// False if some still wait.
  bool SendStatuses();

  /// A failure is logged with one line.
  bool ProcessMessage(const Common::IRestRequest& request,
                      Common::IRestResponse& response) override;
  /// A state that belongs to no task of the server is left out.
  void ReportTaskStatus(const Common::TaskResponseInfo& status) override;
  void NewFileOnOutbox() override;

 private:
  std::atomic<bool> started_{false};
  std::atomic<bool> stopped_{false};
  const std::shared_ptr<StatusQueue> statuses_;
  const std::shared_ptr<ServerSession> session_;
  Delivery delivery_;
  PacedThread thread_;
};

}  // namespace Norvik::Host
