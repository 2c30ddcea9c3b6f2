#include "platform/DescriptorLimit.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

namespace Norvik::Platform {

std::size_t RaiseDescriptorLimit(std::size_t wanted) {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
    return static_cast<std::size_t>(std::max(::sysconf(_SC_OPEN_MAX), 0L));
  }
  const rlimit former = limit;
  if (limit.rlim_cur < wanted) {
    limit.rlim_cur = std::min<rlim_t>(wanted, limit.rlim_max);
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) limit = former;
  }
  return static_cast<std::size_t>(limit.rlim_cur);
}

}  // namespace Norvik::Platform
