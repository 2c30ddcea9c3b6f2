#include "Fuzz.h"
#include "module/Actions/Mac/ToolText.h"

/// Parses the input as the output of `netstat` and as that of `ps`.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Norvik::Fuzz::Quiet quiet;
  const std::string text(data, data + size);
  Norvik::KOB::ReadConnections(text);
  Norvik::KOB::ReadProcessorShare(text);
  return 0;
}
