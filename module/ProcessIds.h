#pragma once

#include <libproc.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Norvik::KOB {

/// The ids of all processes of the machine. The list may end with zeros, which the caller skips.
/// Empty if the system does not list them.
inline std::vector<std::int32_t> ProcessIds() {
  const int bytes = ::proc_listpids(PROC_ALL_PIDS, 0, nullptr, 0);
  if (bytes <= 0) return {};
  // Deliberately one entry per byte: this leaves room for processes that start before the second
  // call.
  std::vector<std::int32_t> ids(static_cast<std::size_t>(bytes), 0);
  ::proc_listpids(PROC_ALL_PIDS, 0, ids.data(), static_cast<int>(ids.size() * sizeof(ids[0])));
  return ids;
}

}  // namespace Norvik::KOB
