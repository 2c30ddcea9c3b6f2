#pragma once

#include <chrono>
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
  /// construction counts. Calls `onHangUp` for each SIGHUP, and `onPause` whenever no signal has
  /// arrived for that time; neither may throw.
  int Wait(const std::function<void()>& onHangUp, std::chrono::milliseconds pause,
           const std::function<void()>& onPause);

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace Norvik::Host
