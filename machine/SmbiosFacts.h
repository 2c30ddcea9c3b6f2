#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/identification/SmBios.h"
#include "common/records/MemoryInfo.h"
#include "common/records/ProcessorInfo.h"
#include "common/records/SetupInfo.h"

namespace Norvik::Machine {

/// The entry point of an SMBIOS table, of either form ("_SM_", "_SM3_").
struct SmbiosEntryPoint {
  std::uint32_t version = 0;    ///< major times 256 plus minor
  std::size_t tableLength = 0;  ///< the largest length of the table in bytes
  bool valid = false;           ///< the form is known and the checksum correct
};
/// Accepts any bytes.
SmbiosEntryPoint ParseSmbiosEntryPoint(const std::string& bytes);

/// The table that belongs to an entry point. Never null; not valid if the entry point is not.
std::shared_ptr<Common::SmBios> MakeSmBios(const std::string& entryPoint, const std::string& table);

/// Board, chassis, identity of the machine and connectors.
Common::SetupInfo SetupOf(const Common::SmBios& smBios);

/// Adds the memory array and its slots.
void AddMemory(const Common::SmBios& smBios, Common::MemoryInfo& memory);

/// Adds the facts of the processors to `processors`, which are matched by their order.
void AddProcessors(const Common::SmBios& smBios, std::vector<Common::ProcessorInfo>& processors);

}  // namespace Norvik::Machine
