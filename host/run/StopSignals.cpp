#include "host/run/StopSignals.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <csignal>
#include <utility>

namespace Norvik::Host {

struct StopSignals::State {
  boost::asio::io_context context{1};
  boost::asio::signal_set signals{context, SIGTERM, SIGINT, SIGHUP};
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
    if (state_->context.run_for(pause) == 0) onPause();
  }
  return ending;
}

}  // namespace Norvik::Host
