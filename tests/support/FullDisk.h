#pragma once

#include <signal.h>
#include <sys/resource.h>

namespace Norvik::Tests {

/// While it lives, a write beyond the size fails as it does on a full disk.
class FullDisk {
 public:
  explicit FullDisk(rlim_t size) : handler_(::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &former_);
    const rlimit limit{size, former_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &former_);
    ::signal(SIGXFSZ, handler_);
  }

 private:
  void (*handler_)(int);
  rlimit former_{};
};

}  // namespace Norvik::Tests
