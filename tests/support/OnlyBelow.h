#pragma once

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

namespace Norvik::Tests {

/// Folders that a walk from the root has to leave out so that it finds nothing but what lies below
/// the folder: all that lies beside the way to it now.
inline std::vector<std::string> AllBut(const boost::filesystem::path& folder) {
  namespace fs = boost::filesystem;
  std::vector<std::string> others;
  fs::path way = "/";
  for (const auto& step : folder.relative_path()) {
    for (const auto& entry : fs::directory_iterator(way)) {
      if (entry.path() != way / step) others.push_back(entry.path().string());
    }
    way /= step;
  }
  return others;
}

}  // namespace Norvik::Tests
