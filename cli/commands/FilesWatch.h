#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "host/assembly/ListeningLogger.h"

namespace Norvik::Cli {

/// What a file inventory is doing.
enum class FilesPhase { Scanning, Saving, Printing, Ended };

/// As users read it: "scanning".
const char* NameOf(FilesPhase phase);

/// Follows a file inventory by what the module logs.
class FilesWatch {
 public:
  /// Called when a phase starts, on the thread of the inventory. Must not raise.
  using PhaseStarts = std::function<void(FilesPhase phase)>;

  /// @param onPhase may be empty
  explicit FilesWatch(PhaseStarts onPhase);

  void See(const Host::LogLine& line);

  /// "incremental" or "total"; empty if no run was accepted.
  std::string Kind() const;
  /// Whether the run came to its end with nothing to send.
  bool NothingToSend() const;
  /// Whether a run that was to be incremental became a total one for want of a former one.
  bool HadNoBase() const;
  /// Seconds spent in each phase that was entered.
  std::map<FilesPhase, double> Seconds() const;
  /// The lines of level 2, in order.
  std::vector<std::string> Problems() const;
  /// The last line of level 3.
  std::string LastWarning() const;

 private:
  void Enter(FilesPhase phase);

  const PhaseStarts onPhase_;
  mutable std::mutex mutex_;
  std::string kind_;
  bool nothingToSend_ = false;
  bool hadNoBase_ = false;
  FilesPhase phase_ = FilesPhase::Ended;
  std::chrono::steady_clock::time_point since_;
  std::map<FilesPhase, double> seconds_;
  std::vector<std::string> problems_;
  std::string lastWarning_;
};

}  // namespace Norvik::Cli
