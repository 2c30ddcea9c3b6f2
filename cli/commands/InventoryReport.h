#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "cli/commands/InventoryWatch.h"
#include "cli/commands/WatchedPipeline.h"
#include "common/action/TaskResponseInfo.h"

namespace Norvik::Cli {

/// What a run of the inventory gave.
struct InventoryReport {
  bool requestedIncremental = false;
  double seconds = 0;
  std::vector<RetrievedSection> sections;
  std::vector<PipelineStep> steps;
  std::vector<Common::TaskResponseInfo> statuses;
  std::vector<std::string> problems;  ///< in the order in which they were logged or found
  /// Why a total inventory was sent where an incremental one was asked for; empty otherwise.
  std::string fallbackReason;
  /// Records under each key of the full document; empty if there is none.
  std::map<std::string, std::size_t> records;

  /// The file in the outbox; empty if none came.
  boost::filesystem::path File() const;
  std::uintmax_t Bytes() const;
  /// "incremental" or "total", as it was sent; empty if nothing was.
  std::string Kind() const;
  /// Whether a document is in the outbox and every step on its way worked.
  bool Succeeded() const;

  std::string ToText() const;
  /// On one line, with a line end.
  std::string ToJsonText() const;

 private:
  const PipelineStep* Move() const;
  boost::optional<std::size_t> RecordsOf(const RetrievedSection& section) const;
};

}  // namespace Norvik::Cli
