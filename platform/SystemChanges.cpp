#include "platform/SystemChanges.h"

#include <CoreServices/CoreServices.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <mutex>
#include <utility>

#include "platform/FourCharacters.h"

namespace Norvik::Platform {

namespace {

struct Current {
  std::mutex mutex;
  std::shared_ptr<SystemChanges> changes = std::make_shared<RealSystemChanges>();
};

Current& TheCurrent() {
  static Current current;
  return current;
}

}  // namespace

SystemChanges::~SystemChanges() = default;

int RealSystemChanges::Kill(pid_t processId, int signal) { return ::kill(processId, signal); }

int SystemChanges::SetClock(const timeval& time) {
  if (time.tv_sec > 0) return ChangeClock(time);
  errno = EINVAL;
  return -1;
}

int RealSystemChanges::ChangeClock(const timeval& time) { return ::settimeofday(&time, nullptr); }

int RealSystemChanges::Remove(const std::string& path) { return std::remove(path.c_str()); }

int RealSystemChanges::RemoveAt(int folder, const std::string& name, const std::string& /*path*/) {
  return ::unlinkat(folder, name.c_str(), 0);
}

int RealSystemChanges::Sync(int descriptor) {
#ifdef F_FULLFSYNC
  // A plain fsync leaves the data in the cache of the drive; not every file system has the full
  // one.
  if (::fcntl(descriptor, F_FULLFSYNC) == 0) return 0;
#endif
  return ::fsync(descriptor);
}

int RealSystemChanges::SendAppleEvent(const AEDesc& event, const std::string& /*name*/) {
  AEDesc reply{FourCharacters("null"), nullptr};
  const int status = ::AESendMessage(&event, &reply, kAENoReply, kAEDefaultTimeout);
  ::AEDisposeDesc(&reply);
  return status;
}

int RealSystemChanges::ClockError() { return ::geteuid() == 0 ? 0 : EPERM; }

void RealSystemChanges::Note(const RehearsedStep& /*step*/) {}

std::shared_ptr<SystemChanges> GetSystemChanges() {
  Current& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  return current.changes;
}

void SetSystemChanges(std::shared_ptr<SystemChanges> changes) {
  if (!changes) changes = std::make_shared<RealSystemChanges>();
  Current& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  std::swap(current.changes, changes);
}

}  // namespace Norvik::Platform
