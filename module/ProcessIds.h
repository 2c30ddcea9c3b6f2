#pragma once

#include <libproc.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Norvik::KOB {

/// The ids of the machine's processes. Entries of 0 may follow them; skip these.
inline std::vector<std::int32_t> ProcessIds() {
  const int bytes = ::proc_listpids(PROC_ALL_PIDS, 0, nullptr, 0);
  if (bytes <= 0) return {};
  // As many entries as there are bytes, deliberately: that leaves room for processes that start
  // before the second call.
  std::vector<std::int32_t> ids(static_cast<std::size_t>(bytes), 0);
  ::proc_listpids(PROC_ALL_PIDS, 0, ids.data(), static_cast<int>(ids.size() * sizeof(ids[0])));
  return ids;
}

}  // namespace Norvik::KOB
