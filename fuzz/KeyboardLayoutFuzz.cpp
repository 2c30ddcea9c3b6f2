#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "module/Inventory/KeyboardSection.h"

/// What `defaults` prints of the input sources. A layout holds no quote, semicolon or line end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string layout = Norvik::KOB::ReadKeyboardLayout(std::string(data, data + size));
  if (layout.find_first_of("\";\n") != std::string::npos) std::abort();
  return 0;
}
