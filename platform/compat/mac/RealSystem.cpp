#include "platform/compat/RealSystem.h"

#include <dlfcn.h>
#include <libproc.h>
#include <sys/sysctl.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace Norvik::Platform {

namespace {

/// The system's own call; by its name our sources reach the one that stands for it.
template <class Call>
Call* Real(const char* name) {
  auto* const real = reinterpret_cast<Call*>(::dlsym(RTLD_NEXT, name));
  if (!real) throw std::logic_error(std::string("the system has no ") + name);
  return real;
}

std::string TextOf(const char* name, int pid) {
  auto* const call = Real<decltype(::proc_name)>(name);
  char text[PROC_PIDPATHINFO_MAXSIZE];
  const int length = call(pid, text, sizeof(text));
  return length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

}  // namespace

std::vector<int> RealPids() {
  auto* const list = Real<decltype(::proc_listpids)>("proc_listpids");
  const int needed = list(PROC_ALL_PIDS, 0, nullptr, 0);
  std::vector<int> pids(static_cast<std::size_t>(std::max(needed, 0)) / sizeof(int));
  const int stored = list(PROC_ALL_PIDS, 0, pids.data(), std::max(needed, 0));
  pids.resize(static_cast<std::size_t>(std::max(stored, 0)) / sizeof(int));
  std::sort(pids.begin(), pids.end());
  return pids;
}

RecordedProcess RealProcess(int pid) {
  RecordedProcess process;
  process.pid = pid;
  process.name = TextOf("proc_name", pid);
  process.path = TextOf("proc_pidpath", pid);
  rusage_info_v2 usage = {};
  auto* const read = Real<decltype(::proc_pid_rusage)>("proc_pid_rusage");
  if (read(pid, RUSAGE_INFO_V2, reinterpret_cast<rusage_info_t*>(&usage)) == 0) {
    process.footprint = usage.ri_phys_footprint;
  }
  return process;
}

std::uint64_t RealMemorySize() {
  int name[] = {CTL_HW, HW_MEMSIZE};
  std::uint64_t size = 0;
  std::size_t length = sizeof(size);
  auto* const read = Real<decltype(::sysctl)>("sysctl");
  return read(name, 2, &size, &length, nullptr, 0) == 0 ? size : 0;
}

int RealSysctlByName(const char* name, void* value, std::size_t* length) {
  return Real<decltype(::sysctlbyname)>("sysctlbyname")(name, value, length, nullptr, 0);
}

}  // namespace Norvik::Platform
