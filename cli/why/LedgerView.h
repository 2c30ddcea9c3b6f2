#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

/// The runs in the ledger of a data folder, the newest first.
struct Ledger {
  std::vector<OrderedJson> runs;
  std::string problem;  ///< why no run could be read; empty otherwise
};

/// Opens the folder's database to read, and closes it. Changes and throws nothing.
Ledger ReadLedger(const boost::filesystem::path& dataFolder);

/// What the newest run with this section says of it: {"begun", "records", "milliseconds", "with",
/// "tools"}. "with" are the sections that are retrieved together with it; "records" is null if the
/// run made no document. Null without such a run.
OrderedJson LastOf(const std::string& section, const Ledger& ledger);

/// The tools of a section that did not end well in some of the runs: [{"command":"ioreg -l",
/// "outcome":"time limit", "runs":2}], the newest outcome of each. All sections if it is empty.
OrderedJson TroubleOf(const std::string& section, const Ledger& ledger);

/// Whether a tool's outcome is that it reached a limit or could not be started. A missing one, or
/// one that has nothing to say, costs no time.
bool HeldUp(const OrderedJson& tool);

/// The sections that took longest, on average over the runs, the costliest first, with the slowest
/// tool of the newest run: [{"keys":["software"], "milliseconds":8000, "last":7900,
/// "tool":"system_profiler ..."}]. "tool" is empty if the section started none.
OrderedJson CostliestOf(const Ledger& ledger, std::size_t most);

/// The newest run for `status`: {"begun", "milliseconds", "slowestSection":{...},
/// "slowestTool":{...}, "trouble":[...]}, null without runs. "slowestTool" is null if none was
/// started.
OrderedJson LastRunOf(const Ledger& ledger);
/// The lines for `LastRunOf`; empty without a run.
std::string LastRunLines(const OrderedJson& lastRun);

}  // namespace Norvik::Cli
