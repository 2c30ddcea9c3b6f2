#include "host/recording/MachineFiles.h"

#include <algorithm>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstdint>
#include <ctime>

#include "host/HostError.h"
#include "platform/MachinePath.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

constexpr std::uintmax_t MAX_FILE = std::uintmax_t{16} << 20;
constexpr std::size_t MAX_ENTRIES = 4096;
/// The system itself follows no more.
constexpr int MAX_LINKS = 32;

class Copier {
 public:
  explicit Copier(const fs::path& root) : root_(root) {}

  /// @param path absolute, as on the machine
  void Copy(const fs::path& path, bool isOpened, int links = 0) {
    const fs::path source = Platform::MachinePath(path.string());
    try {
      // A link to a folder becomes a folder, so that no copied path leads through a link.
      if (fs::is_directory(source)) {
        CopyFolder(path, source, isOpened);
      } else if (fs::is_symlink(source)) {
        CopyLink(path, source, isOpened, links);
      } else if (fs::is_regular_file(source)) {
        CopyFile(source, At(path), isOpened);
      }
    } catch (const fs::filesystem_error& error) {
      failures_.push_back(ReasonOf(error));
    }
  }
  /// After all copies, which change the times of folders.
  std::vector<std::string> Finish() {
    for (const auto& [target, time] : times_) fs::last_write_time(target, time);
    return std::move(failures_);
  }

 private:
  fs::path At(const fs::path& path) const {
    fs::path target = root_ / path.lexically_normal().relative_path();
    fs::create_directories(target.parent_path());
    return target;
  }

  void CopyFolder(const fs::path& path, const fs::path& source, bool isOpened) {
    const fs::path target = At(path);
    fs::create_directories(target);
    times_[target] = fs::last_write_time(source);
    if (!isOpened) return;
    std::vector<fs::path> entries{fs::directory_iterator(source), fs::directory_iterator()};
    std::sort(entries.begin(), entries.end());
    if (entries.size() > MAX_ENTRIES) {
      failures_.push_back(path.string() + " has more than " + std::to_string(MAX_ENTRIES) +
                          " entries; the others are not recorded");
      entries.resize(MAX_ENTRIES);
    }
    for (const fs::path& entry : entries) Copy(path / entry.filename(), !fs::is_directory(entry));
  }

  void CopyLink(const fs::path& path, const fs::path& source, bool isOpened, int links) {
    const fs::path target = fs::read_symlink(source);
    const fs::path copy = At(path);
    if (!fs::is_symlink(copy)) fs::create_symlink(target, copy);
    if (links < MAX_LINKS) {
      Copy((path.parent_path() / target).lexically_normal(), isOpened, links + 1);
    }
  }

  void CopyFile(const fs::path& source, const fs::path& target, bool isOpened) {
    if (fs::exists(target)) return;
    if (fs::file_size(source) > MAX_FILE) {
      failures_.push_back(source.string() + " is too large to be recorded");
      return;
    }
    if (isOpened) {
      fs::copy_file(source, target);
    } else {
      fs::ofstream stream(target);
    }
    fs::permissions(target, fs::owner_read | fs::owner_write);
    fs::last_write_time(target, fs::last_write_time(source));
  }

  const fs::path root_;
  std::map<fs::path, std::time_t> times_;  ///< of folders
  std::vector<std::string> failures_;
};

}  // namespace

std::vector<std::string> CopyMachineFiles(const std::map<std::string, bool>& asked,
                                          const fs::path& root) {
  Copier copier(root);
  for (const auto& [path, isOpened] : asked) copier.Copy(path, isOpened);
  return copier.Finish();
}

}  // namespace Norvik::Host
