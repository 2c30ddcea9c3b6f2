// Preloaded into the agent by script/crash-drill. Numbers the points before and after each call
// that makes a change durable, writes them to a file, and kills the process at one of them.

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <string>

namespace {

constexpr char PROGRAM[] = "norvik-agent";
constexpr char STATUS[] = "has the status ";

template <class Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// Programs that the agent starts have the library loaded too, and are not killed.
bool IsTheAgent() {
  static const bool isAgent = std::string(program_invocation_short_name) == PROGRAM;
  return isAgent;
}

std::string LastPart(const char* path) {
  const char* const slash = ::strrchr(path, '/');
  return slash ? slash + 1 : path;
}

std::string PathOf(int file) {
  char path[4096] = {};
  const std::string link = "/proc/self/fd/" + std::to_string(file);
  return ::readlink(link.c_str(), path, sizeof path - 1) < 0 ? "?" : LastPart(path);
}

void Point(const char* when, const std::string& what) {
  static std::atomic<int> number{0};
  static const char* const killAt = ::getenv("NORVIK_KILL_AT");
  static const char* const notes = ::getenv("NORVIK_KILL_NOTES");
  const int here = ++number;
  if (notes) {
    const std::string line = std::to_string(here) + "\t" + when + "\t" + what + "\n";
    const int file = ::open(notes, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (::write(file, line.data(), line.size()) < 0) ::abort();
    ::close(file);
  }
  if (killAt && ::atoi(killAt) == here) ::kill(::getpid(), SIGKILL);
}

template <class Call>
auto Around(const std::string& what, Call call) {
  if (!IsTheAgent()) return call();
  Point("before", what);
  const auto result = call();
  Point("after", what);
  return result;
}

bool Commits(const char* sql) { return sql && ::strncasecmp(sql, "COMMIT", 6) == 0; }

/// The state of a task in a piece of the log: "status 7"; empty without a state.
std::string StatusIn(const void* bytes, size_t size) {
  const std::string text(static_cast<const char*>(bytes), size);
  const auto found = text.find(STATUS);
  if (found == std::string::npos) return {};
  const auto digits = found + sizeof STATUS - 1;
  return "status " + text.substr(digits, text.find_first_not_of("0123456789", digits) - digits);
}

template <class Write>
size_t WriteLog(const void* bytes, size_t size, size_t count, Write write) {
  const std::string status = StatusIn(bytes, size * count);
  return status.empty() ? write() : Around(status, write);
}

}  // namespace

extern "C" {

int rename(const char* from, const char* to) {
  return Around("rename to " + LastPart(to),
                [&] { return Next<int(const char*, const char*)>("rename")(from, to); });
}

int link(const char* from, const char* to) {
  return Around("link as " + LastPart(to),
                [&] { return Next<int(const char*, const char*)>("link")(from, to); });
}

int unlink(const char* path) {
  return Around("remove " + LastPart(path), [&] { return Next<int(const char*)>("unlink")(path); });
}

int fsync(int file) {
  return Around("sync " + PathOf(file), [&] { return Next<int(int)>("fsync")(file); });
}

int sqlite3_step(sqlite3_stmt* statement) {
  const auto step = [&] { return Next<int(sqlite3_stmt*)>("sqlite3_step")(statement); };
  return Commits(::sqlite3_sql(statement)) ? Around("commit", step) : step();
}

size_t fwrite(const void* bytes, size_t size, size_t count, FILE* file) {
  return WriteLog(bytes, size, count,
                  [&] { return Next<decltype(fwrite)>("fwrite")(bytes, size, count, file); });
}

size_t fwrite_unlocked(const void* bytes, size_t size, size_t count, FILE* file) {
  return WriteLog(bytes, size, count, [&] {
    return Next<decltype(fwrite_unlocked)>("fwrite_unlocked")(bytes, size, count, file);
  });
}
}
