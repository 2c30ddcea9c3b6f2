#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/actions/Errand.h"
#include "host/ipc/IpcConnection.h"
#include "host/ipc/IpcService.h"
#include "host/run/ResponseJson.h"

namespace Norvik::Host {

/// An action that a command of an administrator has the service run. What happens goes to the
/// command's connection, collected for a tenth of a second, and after the last action the result.
/// If the command goes away the actions go on. Safe on any thread.
class CommandRun : public Errand {
 public:
  /// Tells the command at once that its action is accepted.
  /// @param processes keeps the connection usable
  CommandRun(std::shared_ptr<IpcService> processes, std::shared_ptr<IpcConnection> connection);
  /// Sends the rest of the events and the result. Waits for the command to read them, up to a
  /// minute if it reads nothing.
  ~CommandRun() override;

  /// The result of the command's own action. Without one, the action never began.
  void Set(ActionResult result);

  void Happened(const OrderedJson& event) override;
  void Logged(const LogLine& line) override;
  void Counts(const Common::RunInfo& run) override;

 private:
  void Work();
  bool SendEvents();
  void AddCounts();
  void SendResult();

  const std::shared_ptr<IpcService> processes_;
  const std::shared_ptr<IpcConnection> connection_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool ended_ = false;
  std::string events_;       ///< that wait, as JSON with commas between them
  std::size_t linesLeft_;    ///< of the log that are still passed on
  Common::RunInfo counted_;  ///< the run whose counts are sent
  std::string lastCounts_;   ///< the last event of it
  std::unique_ptr<const ActionResult> result_;
  std::thread thread_;  ///< last, since it uses all the others
};

}  // namespace Norvik::Host
