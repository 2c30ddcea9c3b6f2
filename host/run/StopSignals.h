#pragma once

#include <functional>
#include <memory>

namespace Norvik::Host {

/// Waits for the signals that a running agent obeys. While it lives SIGTERM, SIGINT and SIGHUP do
/// nothing else, and SIGPIPE nothing at all. One at a time in a process.
class StopSignals {
 public:
  StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;
  ~StopSignals();

  /// Waits on this thread until SIGTERM or SIGINT comes, or has come since the construction, and
  /// answers which. SIGHUP calls `onHangUp`, which must not raise.
  int Wait(const std::function<void()>& onHangUp);

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace Norvik::Host
