#include "platform/compat/RealSystem.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace Norvik::Platform {

namespace {

std::string ProcessFolder(int pid) { return "/proc/" + std::to_string(pid); }

}  // namespace

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

std::uint64_t RealMemorySize() {
  return static_cast<std::uint64_t>(::sysconf(_SC_PHYS_PAGES) * ::sysconf(_SC_PAGESIZE));
}

int RealSysctlByName(const char*, void*, std::size_t*) {
  errno = ENOENT;
  return -1;
}

}  // namespace Norvik::Platform
