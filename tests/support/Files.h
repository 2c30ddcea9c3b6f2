#pragma once

#include <sys/stat.h>

#include <boost/filesystem/operations.hpp>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace Norvik::Tests {

inline std::string ContentOf(const boost::filesystem::path& path) {
  std::ifstream file(path.string(), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteFile(const boost::filesystem::path& path, const std::string& content) {
  std::ofstream(path.string(), std::ios::binary) << content;
}

/// Permission bits of a path; 0 if it does not exist.
inline unsigned int ModeOf(const boost::filesystem::path& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777u : 0;
}

/// Files and links below a folder, as paths relative to it.
inline std::set<std::string> FilesBelow(const boost::filesystem::path& folder) {
  std::set<std::string> files;
  for (const auto& entry : boost::filesystem::recursive_directory_iterator(folder)) {
    const auto type = entry.symlink_status().type();
    if (type == boost::filesystem::directory_file) continue;
    files.insert(boost::filesystem::relative(entry.path().parent_path(), folder).string() + "/" +
                 entry.path().filename().string());
  }
  return files;
}

/// Folders that a walk from the root must exclude to find only what lies below the folder: all
/// entries next to a component of its path at the time of the call.
inline std::vector<std::string> AllBut(const boost::filesystem::path& folder) {
  std::vector<std::string> others;
  boost::filesystem::path parent = "/";
  for (const auto& step : folder.relative_path()) {
    for (const auto& entry : boost::filesystem::directory_iterator(parent)) {
      if (entry.path() != parent / step) others.push_back(entry.path().string());
    }
    parent /= step;
  }
  return others;
}

}  // namespace Norvik::Tests
