#pragma once

#include <cstdint>
#include <vector>

namespace Norvik::KOB {

/// The processes of the machine. Entries of 0 behind them stand for none.
std::vector<std::int32_t> ProcessIds();

}  // namespace Norvik::KOB
