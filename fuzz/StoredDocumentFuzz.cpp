#include <cstddef>
#include <cstdint>
#include <exception>
#include <sstream>
#include <string>

#include "module/Entities/InventoryReader.h"

/// The text as the previous inventory. What is none raises what a run catches.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream document(std::string(data, data + size));
  try {
    Norvik::KOB::ReadInventory(document, "previous");
  } catch (const std::exception&) {
    // The run sends a total inventory instead.
  }
  return 0;
}
