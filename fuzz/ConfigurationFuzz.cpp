#include <cstddef>
#include <cstdint>
#include <string>

#include "host/configuration/ConfigurationFile.h"

/// The text as a configuration.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    Norvik::Host::ParseConfiguration(std::string(data, data + size));
  } catch (const Norvik::Host::ConfigurationError&) {
    // Told to who gave it.
  }
  return 0;
}
