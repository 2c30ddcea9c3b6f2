#pragma once

#include <functional>
#include <memory>

namespace Norvik::Host {

/// Waits for the signals that a running agent handles. While it exists, SIGTERM, SIGINT and SIGHUP
/// have no other effect, and SIGPIPE is ignored. At most one at a time in a process.
class StopSignals {
 public:
  StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;
  ~StopSignals();

  /// Waits on this thread for SIGTERM or SIGINT, and returns which arrived; a signal since the
  /// construction counts. Calls `onHangUp` for each SIGHUP; it must not throw.
  int Wait(const std::function<void()>& onHangUp);

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace Norvik::Host
