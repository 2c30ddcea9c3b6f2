#pragma once

#include <fstream>
#include <set>
#include <string>

namespace Norvik::Tests {

/// First column of the table under "What an incremental document cannot tell" of a guide in docs/.
inline std::set<std::string> DocumentedLosses(const std::string& guide) {
  std::ifstream file(NORVIK_SOURCE_DIR "/docs/" + guide);
  std::set<std::string> names;
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("## ", 0) == 0) inside = line == "## What an incremental document cannot tell";
    if (!inside || line.rfind("| ", 0) != 0 || line.rfind("| what", 0) == 0 ||
        line.rfind("| -", 0) == 0)
      continue;
    names.insert(line.substr(2, line.find(" |", 2) - 2));
  }
  return names;
}

}  // namespace Norvik::Tests
