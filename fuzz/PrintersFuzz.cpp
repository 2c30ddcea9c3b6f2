#include "Fuzz.h"
#include "module/Inventory/PrintersSection.h"

/// Reads the input as a `printers.conf` and as the description of a driver.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  std::istringstream configuration(text);
  Norvik::KOB::ReadPrintersConfiguration(configuration, [](const wxString& name) { return name; });
  std::istringstream description(text);
  Norvik::KOB::ReadDriverName(description);
  return 0;
}
