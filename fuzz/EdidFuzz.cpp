#include <cstddef>
#include <cstdint>
#include <list>
#include <stdexcept>
#include <string>

#include "module/Inventory/MonitorsSection.h"

/// The EDID blocks of `ioreg`, one a line. A line that is too short raises, and nothing else may.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::list<Norvik::KOB::MonitorInfo> monitors;
  try {
    Norvik::KOB::ReadEdidLines(std::string(data, data + size), monitors);
  } catch (const std::out_of_range&) {
  }
  return 0;
}
