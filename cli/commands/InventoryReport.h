#pragma once

#include <map>
#include <string>
#include <vector>

#include "cli/commands/DocumentCounts.h"
#include "cli/commands/InventoryRecorder.h"
#include "cli/commands/RunResult.h"

namespace Norvik::Cli {

/// What a run of the machine inventory gave.
struct InventoryReport : RunResult {
  std::vector<RetrievedSections> sections;
  /// By the keys of the full document; empty if there is none.
  std::map<std::string, SectionCount> records;

  /// "incremental" or "total", as it was sent; empty if nothing was.
  std::string SentKind() const { return File().empty() ? "" : kind; }
  /// Whether a document is in the outbox and every step on its way worked.
  bool Succeeded() const;

  std::string ToText() const;
  /// On one line, with a newline at its end.
  std::string ToJsonText() const;
};

}  // namespace Norvik::Cli
