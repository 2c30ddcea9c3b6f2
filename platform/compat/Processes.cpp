#include <libproc.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "platform/compat/RealSystem.h"
#include "platform/compat/Recording.h"

using namespace Norvik::Platform;

namespace {

std::vector<int> Pids() {
  const auto recorded = RecordedProcesses();
  if (!recorded) return RealPids();
  std::vector<int> pids;
  for (const RecordedProcess& process : *recorded) pids.push_back(process.pid);
  return pids;
}

RecordedProcess Process(int pid) {
  const auto recorded = RecordedProcesses();
  if (!recorded) return RealProcess(pid);
  for (const RecordedProcess& process : *recorded) {
    if (process.pid == pid) return process;
  }
  return {};
}

/// Gives the length of what was stored.
int Store(const std::string& text, void* buffer, std::uint32_t size) {
  if (text.empty() || size == 0) {
    errno = text.empty() ? ESRCH : ENOMEM;
    return 0;
  }
  const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
  std::memcpy(buffer, text.data(), length);
  static_cast<char*>(buffer)[length] = '\0';
  return static_cast<int>(length);
}

}  // namespace

int proc_listpids(uint32_t type, uint32_t, void* buffer, int buffersize) {
  if (type != PROC_ALL_PIDS) {
    errno = EINVAL;
    return 0;
  }
  const std::vector<int> pids = Pids();
  const std::size_t needed = pids.size() * sizeof(int);
  if (!buffer) return static_cast<int>(needed);
  const auto offered = static_cast<std::size_t>(std::max(buffersize, 0));
  const std::size_t stored = std::min(needed, offered / sizeof(int) * sizeof(int));
  if (stored > 0) std::memcpy(buffer, pids.data(), stored);
  return static_cast<int>(stored);
}

int proc_name(int pid, void* buffer, uint32_t buffersize) {
  return Store(Process(pid).name, buffer, buffersize);
}

int proc_pidpath(int pid, void* buffer, uint32_t buffersize) {
  return Store(Process(pid).path, buffer, buffersize);
}

int proc_pid_rusage(int pid, int flavor, rusage_info_t* buffer) {
  const auto footprint = Process(pid).footprint;
  if (flavor != RUSAGE_INFO_V2 || !footprint) {
    errno = flavor != RUSAGE_INFO_V2 ? EINVAL : ESRCH;
    return -1;
  }
  rusage_info_v2 usage = {};
  usage.ri_phys_footprint = *footprint;
  // By Apple's interface the pointer is the buffer's, whatever its type says.
  std::memcpy(static_cast<void*>(buffer), &usage, sizeof(usage));
  return 0;
}
