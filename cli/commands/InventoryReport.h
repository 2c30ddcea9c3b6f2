#pragma once

#include <map>
#include <string>
#include <vector>

#include "cli/commands/DocumentCounts.h"
#include "cli/commands/InventoryRecorder.h"
#include "cli/commands/RunResult.h"

namespace Norvik::Cli {

/// The result of a machine inventory, and its rendering.
struct InventoryReport : RunResult {
  std::vector<RetrievedSections> sections;
  /// By the keys of the full document; empty if no full document was kept.
  std::map<std::string, SectionCount> records;

  /// "incremental" or "total", as it was sent; empty if nothing was sent.
  std::string SentKind() const { return File().empty() ? "" : kind; }
  /// Whether a document is in the outbox, every step to it worked and no task failed.
  bool Succeeded() const;

  std::string ToText() const;
  /// One line with its newline.
  std::string ToJsonText() const;
};

}  // namespace Norvik::Cli
