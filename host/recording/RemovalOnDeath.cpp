#include "host/recording/RemovalOnDeath.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace Norvik::Host {

namespace {

// A tool that still runs may write once more.
constexpr char REMOVER[] =
    "trap '' HUP INT TERM; exec >/dev/null 2>&1; read -r line; [ -n \"$line\" ] || "
    "/bin/rm -rf \"$1\" || { /bin/sleep 1; /bin/rm -rf \"$1\"; }";

}  // namespace

RemovalOnDeath::RemovalOnDeath(const boost::filesystem::path& path) {
  if (!pipe_.Open()) return;
  remover_ = ::fork();
  if (remover_ != 0) {
    pipe_.read.Close();
    return;
  }
  ::setsid();  // so that it gets no signals of a terminal
  if (::dup2(pipe_.read.Get(), STDIN_FILENO) == STDIN_FILENO) {
    ::execl("/bin/sh", "sh", "-c", REMOVER, "sh", path.c_str(), nullptr);
  }
  ::_exit(1);
}

RemovalOnDeath::~RemovalOnDeath() {
  if (remover_ < 0) return;
  (void)!::write(pipe_.write.Get(), "done\n", 5);
  pipe_.write.Close();
  while (::waitpid(remover_, nullptr, 0) < 0 && errno == EINTR) continue;
}

}  // namespace Norvik::Host
