#include <list>
#include <vector>

#include "Fuzz.h"
#include "common/identification/SmBios.h"
#include "module/CommonInventorySections/BiosSection.h"

/// Reads the input as two bytes of version followed by a raw table.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Norvik::Fuzz::Quiet quiet;
  if (size < 2) return 0;
  const auto version = static_cast<std::uint32_t>(data[0] << 8 | data[1]);
  const auto smBios = std::make_shared<Norvik::Common::SmBios>(
      version, std::vector<std::uint8_t>(data + 2, data + size));
  std::list<const Norvik::Common::SmBios::CStruct*> structures;
  for (int type = 0; type < 256; ++type) {
    smBios->GetStructData(static_cast<std::uint8_t>(type), structures);
  }
  for (const auto* const structure : structures) {
    for (std::size_t at = 0; at < 256; ++at) structure->TextAt(at);
  }
  Norvik::KOB::SmBiosInfo info;
  Norvik::KOB::BiosSection(smBios).GetInfo(info);
  return 0;
}
