#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/Location.h"

namespace Norvik::Platform {

struct RecordedProcess {
  int pid = 0;
  std::string name;                        ///< empty: not known
  std::string path;                        ///< empty: not known
  std::optional<std::uint64_t> footprint;  ///< in bytes; none: this process may not read it
};

struct RecordedFix {
  std::chrono::milliseconds after{0};  ///< since the search was begun
  LocationFix fix;
};

struct RecordedLocation {
  bool enabled = false;
  std::vector<RecordedFix> fixes;
};

/// Processes of the recorded machine; none if there is no recording or it has no list, and the real
/// ones answer. A list that is damaged holds no process.
std::optional<std::vector<RecordedProcess>> RecordedProcesses();

/// Not enabled without a recording or its file.
RecordedLocation ReadRecordedLocation();

}  // namespace Norvik::Platform
