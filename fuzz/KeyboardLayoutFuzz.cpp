#include "Fuzz.h"
#include "module/Inventory/KeyboardSection.h"

/// Reads the input as the output of `defaults` for the input sources. A layout must hold no quote,
/// semicolon or line end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string layout = Norvik::KOB::ReadKeyboardLayout(std::string(data, data + size));
  if (layout.find_first_of("\";\n") != std::string::npos) std::abort();
  return 0;
}
