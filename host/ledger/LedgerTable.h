#pragma once

#include <cstddef>
#include <vector>

#include "host/OutputText.h"

namespace Norvik::Host {

/// How many runs the ledger keeps.
inline constexpr std::size_t LEDGER_RUNS = 30;

/// Adds a run to the ledger in the process's open database, and removes those beyond the newest
/// `LEDGER_RUNS`, in one transaction. Throws what the database throws.
void WriteLedgerRun(const OrderedJson& run);

/// The runs of the process's open database, the newest first, each as `LedgerRecorder` makes it. A
/// row that is no such object is left out. Empty without the table: an older schema does not have
/// it. Throws what the database throws.
std::vector<OrderedJson> ReadLedgerRuns();

}  // namespace Norvik::Host
