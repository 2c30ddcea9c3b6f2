#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/commands/RunRecorder.h"

namespace Norvik::Cli {

/// Sections of the document that one retrieval fills.
struct RetrievedSections {
  Common::SectionKeys keys;
  double seconds = 0;  ///< sum of all their retrievals

  /// "setup, portConnectors"
  std::string Name() const;
};

/// Collects what a machine inventory reports. Safe on any thread.
class InventoryRecorder : public RunRecorder {
 public:
  /// Called when sections are retrieved for the first time, on the thread that retrieves them. It
  /// must not call the recorder, which is locked.
  using OnSections = std::function<void(const RetrievedSections& sections)>;

  explicit InventoryRecorder(OnSections onSections);

  /// In the order in which they were first retrieved.
  std::vector<RetrievedSections> Sections() const;

  void SectionBegun(const Common::RunInfo& run, const Common::SectionKeys& keys) override;
  void SectionEnded(const Common::RunInfo& run, const Common::SectionKeys& keys,
                    Duration taken) override;

 private:
  const OnSections onSections_;
  std::vector<RetrievedSections> sections_;
};

}  // namespace Norvik::Cli
