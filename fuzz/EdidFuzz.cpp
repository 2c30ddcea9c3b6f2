#include <list>

#include "Fuzz.h"
#include "module/Inventory/MonitorsSection.h"

/// Decodes the input as the EDID blocks of `ioreg`, one per line. A line that is too short throws
/// `std::out_of_range`; nothing else may be thrown.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::list<Norvik::KOB::MonitorInfo> monitors;
  try {
    Norvik::KOB::ReadEdidLines(std::string(data, data + size), monitors);
  } catch (const std::out_of_range&) {
  }
  return 0;
}
