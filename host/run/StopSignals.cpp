#include "host/run/StopSignals.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <csignal>
#include <utility>

namespace Norvik::Host {

struct StopSignals::State {
  boost::asio::io_context context{1};
  boost::asio::signal_set signals{context, SIGTERM, SIGINT, SIGHUP};
  boost::asio::steady_timer timer{context};
  void (*pipeHandler)(int) = std::signal(SIGPIPE, SIG_IGN);
};

StopSignals::StopSignals() : state_(std::make_unique<State>()) {}

StopSignals::~StopSignals() { std::signal(SIGPIPE, state_->pipeHandler); }

int StopSignals::Wait(const std::function<void()>& onHangUp, std::chrono::milliseconds pause,
                      const std::function<void()>& onPause) {
  int ending = 0;
  bool waiting = false;
  while (ending == 0) {
    if (!std::exchange(waiting, true)) {
      state_->signals.async_wait([&](const boost::system::error_code& error, int signal) {
        waiting = false;
        if (error || signal == SIGHUP) return onHangUp();
        ending = signal;
      });
    }
    state_->context.restart();
    // One wait for the whole pause: `run_for` would wake up each second.
    bool paused = false;
    state_->timer.expires_after(pause);
    state_->timer.async_wait([&](const boost::system::error_code& error) { paused = !error; });
    state_->context.run_one();
    state_->timer.cancel();
    state_->context.poll();
    if (paused) onPause();
  }
  return ending;
}

}  // namespace Norvik::Host
