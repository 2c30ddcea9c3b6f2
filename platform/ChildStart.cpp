#include "platform/ChildStart.h"

#include <fcntl.h>
#include <grp.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/FileDescriptor.h"

extern char** environ;

namespace Norvik::Platform {

namespace {

/// Texts in the form that exec takes: pointers, and a null after the last.
std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const auto& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

class SpawnActions {
 public:
  SpawnActions() { ::posix_spawn_file_actions_init(&actions_); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }
  posix_spawn_file_actions_t* Get() { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

class SpawnAttributes {
 public:
  SpawnAttributes() { ::posix_spawnattr_init(&attributes_); }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  ~SpawnAttributes() { ::posix_spawnattr_destroy(&attributes_); }
  posix_spawnattr_t* Get() { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

/// Lets the child keep its three standard channels only. Returns the flag that this needs.
short CloseTheRest(posix_spawn_file_actions_t* actions) {
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
  (void)actions;
  return POSIX_SPAWN_CLOEXEC_DEFAULT;
#else
  ::posix_spawn_file_actions_addclosefrom_np(actions, 3);
  return 0;
#endif
}

// From here to the exec only calls that are safe in the child of a process with threads.

void CloseTheRestNow(int kept) {
  const long limit = ::sysconf(_SC_OPEN_MAX);
#ifdef __linux__
  (void)limit;
  // The two ranges below and above the one that is kept.
  if (kept > 3) ::close_range(3, static_cast<unsigned>(kept - 1), 0);
  ::close_range(static_cast<unsigned>(kept + 1), ~0u, 0);
#else
  for (int descriptor = 3; descriptor < limit; ++descriptor) {
    if (descriptor != kept) ::close(descriptor);
  }
#endif
}

struct ForkedChild {
  const ChildAccount& account;
  const std::vector<gid_t>& groups;
  const ChildChannels& channels;
  char* const* arguments;
  char** environment;
  int report;  ///< descriptor to which an errno is written
};

bool BecomeUser(const ForkedChild& child) {
  if (::geteuid() == child.account.user && ::getegid() == child.account.group) return true;
#ifdef __APPLE__
  const int count = static_cast<int>(child.groups.size());
#else
  const std::size_t count = child.groups.size();
#endif
  return ::setgroups(count, child.groups.data()) == 0 && ::setgid(child.account.group) == 0 &&
         ::setuid(child.account.user) == 0;
}

bool SetUpChannels(const ForkedChild& child) {
  const int input = ::open("/dev/null", O_RDONLY);
  if (input < 0 || ::dup2(input, 0) < 0) return false;
  if (::dup2(child.channels.output, 1) < 0 || ::dup2(child.channels.errors, 2) < 0) return false;
  CloseTheRestNow(child.report);
  return true;
}

void ResetSignals() {
  for (int number = 1; number < NSIG; ++number) ::signal(number, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void RunForked(const ForkedChild& child) {
  ResetSignals();
  ::setpgid(0, 0);
  if (SetUpChannels(child) && BecomeUser(child)) {
    // A home that cannot be entered, or does not exist yet, is no reason not to run.
    if (::chdir(child.account.home.c_str()) != 0) (void)!::chdir("/");
    environ = child.environment;
    ::execvp(child.arguments[0], child.arguments);
  }
  const int error = errno;
  (void)!::write(child.report, &error, sizeof(error));
  ::_exit(127);
}

std::vector<gid_t> GroupsOf(const ChildAccount& account) {
#ifdef __APPLE__
  using Group = int;
#else
  using Group = gid_t;
#endif
  int count = 64;
  std::vector<Group> groups(static_cast<std::size_t>(count));
  const auto base = static_cast<Group>(account.group);
  if (::getgrouplist(account.name.c_str(), base, groups.data(), &count) < 0) {
    groups.resize(static_cast<std::size_t>(count));
    ::getgrouplist(account.name.c_str(), base, groups.data(), &count);
  }
  return {groups.begin(), groups.begin() + count};
}

/// Only what a program of another user needs; this process's own environment may hold secrets.
std::vector<std::string> EnvironmentOf(const ChildAccount& account) {
  std::vector<std::string> environment = {"HOME=" + account.home, "USER=" + account.name,
                                          "LOGNAME=" + account.name, "SHELL=" + account.shell};
  for (const char* name : {"PATH", "LANG", "LC_ALL", "LC_CTYPE", "TZ"}) {
    if (const char* value = std::getenv(name))
      environment.push_back(name + ("=" + std::string(value)));
  }
  return environment;
}

/// The errno that the child reports; 0 if its program runs, because the exec closes the channel.
int ReportedError(int channel) {
  int error = 0;
  ssize_t length = 0;
  do {
    length = ::read(channel, &error, sizeof(error));
  } while (length < 0 && errno == EINTR);
  return length == sizeof(error) ? error : 0;
}

void Reap(pid_t processId) {
  while (::waitpid(processId, nullptr, 0) < 0 && errno == EINTR) continue;
}

}  // namespace

int StartChild(const std::vector<std::string>& words, const ChildChannels& channels,
               pid_t& processId) {
  SpawnActions actions;
  ::posix_spawn_file_actions_addopen(actions.Get(), 0, "/dev/null", O_RDONLY, 0);
  ::posix_spawn_file_actions_adddup2(actions.Get(), channels.output, 1);
  ::posix_spawn_file_actions_adddup2(actions.Get(), channels.errors, 2);
  const short closing = CloseTheRest(actions.Get());

  SpawnAttributes attributes;
  sigset_t signals;
  sigfillset(&signals);
  ::posix_spawnattr_setsigdefault(attributes.Get(), &signals);
  sigemptyset(&signals);
  ::posix_spawnattr_setsigmask(attributes.Get(), &signals);
  ::posix_spawnattr_setflags(attributes.Get(),
                             static_cast<short>(POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK |
                                                POSIX_SPAWN_SETPGROUP | closing));
  return ::posix_spawnp(&processId, words.front().c_str(), actions.Get(), attributes.Get(),
                        Pointers(words).data(), environ);
}

int StartChildAs(const ChildAccount& account, const std::vector<std::string>& words,
                 const ChildChannels& channels, pid_t& processId) {
  Pipe report;
  if (!report.Open()) return errno;

  // Everything that allocates happens before the fork.
  const std::vector<gid_t> groups = GroupsOf(account);
  const std::vector<std::string> environment = EnvironmentOf(account);
  std::vector<char*> environmentPointers = Pointers(environment);
  const std::vector<char*> arguments = Pointers(words);
  const ForkedChild child{
      account, groups, channels, arguments.data(), environmentPointers.data(), report.write.Get()};
  processId = ::fork();
  if (processId < 0) return errno;
  if (processId == 0) RunForked(child);

  report.write.Close();
  const int error = ReportedError(report.read.Get());
  if (error != 0) Reap(processId);
  return error;
}

}  // namespace Norvik::Platform
