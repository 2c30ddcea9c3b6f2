#include "module/Actions/Mac/WrappedCalls.h"

#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>

Norvik::Tests::WrappedCalls& Norvik::Tests::TheWrappedCalls() {
  static WrappedCalls calls;
  return calls;
}

// Names that the linker puts in the place of the real calls.
extern "C" {

int __real_kill(pid_t processId, int signal);

int __wrap_kill(pid_t processId, int signal) {
  auto& calls = Norvik::Tests::TheWrappedCalls();
  calls.made.push_back("kill " + std::to_string(processId) + " " + std::to_string(signal));
  if (processId > 0 && processId == calls.killable) return __real_kill(processId, signal);
  errno = ESRCH;
  return -1;
}

uid_t __real_geteuid();

uid_t __wrap_geteuid() { return Norvik::Tests::TheWrappedCalls().user.value_or(__real_geteuid()); }

int __wrap_settimeofday(const timeval* time, const void* zone) {
  auto& calls = Norvik::Tests::TheWrappedCalls();
  const std::string parts =
      std::to_string(1000000 + time->tv_usec).substr(1) + (zone ? " zone" : "");
  calls.made.push_back("settimeofday " + std::to_string(time->tv_sec) + "." + parts);
  errno = EPERM;
  return calls.clockCanBeSet ? 0 : -1;
}

}  // extern "C"
