#pragma once

#include <optional>
#include <string>

namespace Norvik::Platform {

/// Replaces the machine by a recorded Mac as long as the object exists: I/O registry, values of the
/// kernel, network interfaces, volumes, accounts, processes, location, files and programs are those
/// of a folder. PATH of this process and of those that it starts is then `bin` of the folder and a
/// folder of filters, as grep and awk, which say nothing of the machine that runs them. One object
/// at a time; create and destroy it while no other thread runs commands or uses paths. A file that
/// is missing or damaged in the folder counts as missing.
class RecordedMachine {
 public:
  /// Whether this build has it: every one that compiles platform/compat, so not the product on
  /// macOS.
  static bool IsAvailable();

  /// Throws `std::runtime_error` if there is no such folder, another one is in force, or it is not
  /// available, or if the folder of filters cannot be made.
  explicit RecordedMachine(const std::string& folder);
  RecordedMachine(const RecordedMachine&) = delete;
  RecordedMachine& operator=(const RecordedMachine&) = delete;
  ~RecordedMachine();

 private:
  std::optional<std::string> previousPath_;
  std::string filters_;  ///< folder
};

/// Whether a recorded machine is in force.
bool IsMachineRecorded();

}  // namespace Norvik::Platform
