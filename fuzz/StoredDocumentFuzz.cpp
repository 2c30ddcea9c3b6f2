#include "Fuzz.h"
#include "module/Entities/InventoryReader.h"

/// Reads the input as the previous inventory. An invalid document throws what a run catches.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream document(std::string(data, data + size));
  try {
    Norvik::KOB::ReadInventory(document, "previous");
  } catch (const std::exception&) {
  }
  return 0;
}
