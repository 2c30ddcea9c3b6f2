#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/LocalAccounts.h"
#include "platform/Location.h"
#include "platform/compat/Registry.h"

// What the recorded machine in force holds. Nothing here throws: a file that is missing or damaged
// reads as empty.

namespace Norvik::Platform {

/// The registry of the recorded machine; an empty one if none is in force. Never null.
std::shared_ptr<const Registry> CurrentRegistry();

/// The path of a file of the recorded machine; empty if none is in force.
std::string RecordingFile(const std::string& name);

struct RecordedProcess {
  int pid = 0;
  std::string name;                        ///< empty: unknown
  std::string path;                        ///< empty: unknown
  std::optional<std::uint64_t> footprint;  ///< in bytes; empty: this process may not read it
};

/// The processes of the recorded machine. Empty if no machine is in force: then the real processes
/// count. A missing or damaged list holds no process.
std::optional<std::vector<RecordedProcess>> RecordedProcesses();

struct RecordedFix {
  std::chrono::milliseconds after{0};  ///< since the search began
  LocationFix fix;
};

struct RecordedLocation {
  bool enabled = false;
  std::vector<RecordedFix> fixes;
};

/// The positions of the recorded machine; not enabled without their file.
RecordedLocation ReadRecordedLocation();

/// The accounts, login records, host name and kernel's name of the recorded machine. Without a name
/// it is "localhost".
MachineAccounts ReadRecordedAccounts();

/// The SMBIOS table of the recorded machine, from `smbios.bin`: the entry point, and the table at
/// the address in the entry point if that is inside the file, otherwise directly after the entry
/// point. Both are empty without the file or without a recording.
SmBiosBytes RecordedSmBios();

}  // namespace Norvik::Platform
