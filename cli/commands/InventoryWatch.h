#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "host/assembly/ListeningLogger.h"

namespace Norvik::Cli {

/// A section that a run of the inventory has retrieved.
struct RetrievedSection {
  std::string name;                       ///< as the log calls it: "physical disk"
  std::vector<std::string> documentKeys;  ///< where its records stand in the document
  double seconds = 0;
};

/// Follows the run of an inventory by what the module logs: each section when its retrieval starts
/// and ends, and what went wrong.
class InventoryWatch {
 public:
  /// Called with the name of each section whose retrieval starts, on the thread that retrieves.
  using SectionStarts = std::function<void(const std::string& name)>;

  explicit InventoryWatch(SectionStarts onSection);

  void See(const Host::LogLine& line);

  std::vector<RetrievedSection> Sections() const;
  /// The lines of level 2, in order.
  std::vector<std::string> Problems() const;
  /// Why a total inventory took the place of an incremental one; empty if none did.
  std::string FallbackReason() const;

 private:
  void Start(const Host::LogLine& line);
  void EndOpenSection();

  const SectionStarts onSection_;
  mutable std::mutex mutex_;
  std::vector<RetrievedSection> sections_;
  bool open_ = false;  ///< the last section is still being retrieved
  int depth_ = 0;      ///< of functions entered since then
  std::chrono::steady_clock::time_point openSince_;
  std::vector<std::string> problems_;
  std::string lastReason_;
  std::string fallbackReason_;
};

}  // namespace Norvik::Cli
