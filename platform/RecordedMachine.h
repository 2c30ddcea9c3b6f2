#pragma once

#include <memory>
#include <string>

namespace Norvik::Platform {

// Exists on systems other than macOS only.

/// Has a folder stand for a Mac as long as this lives: its I/O registry, processes, location, files
/// and programs answer in place of the real ones. PATH of this process and of those that it starts
/// is then `bin` of the folder, /usr/bin and /bin. One at a time; make and end it while no other
/// thread runs commands or asks for paths. What is missing or damaged in the folder reads as not
/// being there.
class RecordedMachine {
 public:
  /// Raises `std::runtime_error` if there is no such folder, or another one is in force.
  explicit RecordedMachine(const std::string& folder);
  RecordedMachine(const RecordedMachine&) = delete;
  RecordedMachine& operator=(const RecordedMachine&) = delete;
  ~RecordedMachine();

 private:
  std::string previousPath_;
  bool hadPath_ = false;
};

/// Whether a recorded machine is in force.
bool IsMachineRecorded();

/// Raw bytes of an SMBIOS table and its entry point.
struct SmBiosBytes {
  std::string entryPoint;
  std::string table;
};
/// The recorded machine's, from `smbios.bin`: the entry point, and the table directly behind it or
/// where it says that the table lies, if that is inside the file. Both empty without the file, and
/// without a recording.
SmBiosBytes RecordedSmBios();

}  // namespace Norvik::Platform
