#include <libproc.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include "platform/RecordedMachine.h"
#include "platform/compat/Recording.h"

using namespace Norvik::Platform;

namespace {

std::string ProcessFolder(int pid) { return "/proc/" + std::to_string(pid); }

std::vector<int> RealPids() {
  std::vector<int> pids;
  std::error_code error;
  for (std::filesystem::directory_iterator item("/proc", error), end; !error && item != end;
       item.increment(error)) {
    const std::string name = item->path().filename().string();
    if (name.find_first_not_of("0123456789") == std::string::npos) pids.push_back(std::stoi(name));
  }
  std::sort(pids.begin(), pids.end());
  return pids;
}

RecordedProcess RealProcess(int pid) {
  RecordedProcess process;
  process.pid = pid;
  std::error_code unknown;
  process.path = std::filesystem::read_symlink(ProcessFolder(pid) + "/exe", unknown).string();
  std::ifstream name(ProcessFolder(pid) + "/comm");
  std::getline(name, process.name);
  long long whole = 0;
  long long resident = 0;
  if (std::ifstream(ProcessFolder(pid) + "/statm") >> whole >> resident) {
    process.footprint = static_cast<std::uint64_t>(resident * ::sysconf(_SC_PAGESIZE));
  }
  return process;
}

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
