#include "host/data/DataFolder.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

namespace Norvik::Host {

boost::filesystem::path HomeFolder() {
  const char* const home = std::getenv("HOME");
  if (home && *home == '/') return home;
  const passwd* const account = ::getpwuid(::geteuid());
  if (account && account->pw_dir && *account->pw_dir == '/') return account->pw_dir;
  throw std::runtime_error("no home folder is known for the data; --data names a folder");
}

DataFolderLock::DataFolderLock(const boost::filesystem::path& folder) {
  const std::string path = (folder / LOCK_FILE).string();
  file_ = Platform::FileDescriptor(
      ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
  if (!file_.IsOpen()) {
    throw std::runtime_error("cannot open " + path + ": " + std::strerror(errno));
  }
  if (::flock(file_.Get(), LOCK_EX | LOCK_NB) == 0) return;
  const int error = errno;
  throw std::runtime_error(error == EWOULDBLOCK
                               ? "another agent works with the data folder " + folder.string()
                               : "cannot lock " + path + ": " + std::strerror(error));
}

}  // namespace Norvik::Host
