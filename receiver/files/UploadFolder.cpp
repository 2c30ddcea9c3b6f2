#include "receiver/files/UploadFolder.h"

#include <sys/stat.h>

#include <boost/filesystem/operations.hpp>

namespace Norvik::Receiver {

namespace {

constexpr char DIGITS[] = "0123456789abcdef";

}  // namespace

void UploadFolder::Prepare() const {
  const mode_t former = ::umask(S_IRWXG | S_IRWXO);
  boost::filesystem::create_directories(folder_);
  for (int number = 0; number < 256; ++number) {
    boost::filesystem::create_directory(folder_ + "/" + DIGITS[number / 16] + DIGITS[number % 16]);
  }
  ::umask(former);
}

std::string UploadFolder::PathOf(const std::string& agent, const std::string& sha256) const {
  return folder_ + "/" + sha256.substr(0, 2) + "/" + agent + "-" + sha256;
}

void UploadFolder::Remove(const std::string& agent, const std::string& sha256) const {
  boost::system::error_code error;
  boost::filesystem::remove(PathOf(agent, sha256), error);
}

std::vector<std::string> UploadFolder::Paths() const {
  std::vector<std::string> paths;
  for (const auto& entry : boost::filesystem::recursive_directory_iterator(folder_)) {
    if (boost::filesystem::is_regular_file(entry.status())) paths.push_back(entry.path().string());
  }
  return paths;
}

}  // namespace Norvik::Receiver
