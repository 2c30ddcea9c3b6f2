#include "Fuzz.h"
#include "host/configuration/ConfigurationFile.h"

/// Parses the input as a configuration. Only `ConfigurationError` may be thrown.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    Norvik::Host::ParseConfiguration(std::string(data, data + size));
  } catch (const Norvik::Host::ConfigurationError&) {
  }
  return 0;
}
