#include <cstddef>
#include <cstdint>
#include <string>

#include "Quiet.h"
#include "module/Actions/Mac/ToolText.h"

/// The text as what `netstat` prints, and as what `ps` does.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Norvik::Fuzz::Quiet quiet;
  const std::string text(data, data + size);
  Norvik::KOB::ReadConnections(text);
  Norvik::KOB::ReadProcessorShare(text);
  return 0;
}
