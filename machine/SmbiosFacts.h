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

/// Entry point of an SMBIOS table, of either form ("_SM_", "_SM3_").
struct SmbiosEntryPoint {
  std::uint32_t version = 0;    ///< major times 256 plus minor
  std::size_t tableLength = 0;  ///< the longest that the table may be
  bool valid = false;           ///< known form, right checksum
};
SmbiosEntryPoint ParseSmbiosEntryPoint(const std::string& bytes);

/// The table behind its entry point. Never null; not valid if the entry point is none.
std::shared_ptr<Common::SmBios> MakeSmBios(const std::string& entryPoint, const std::string& table);

/// Board, chassis, identity of the machine and connectors.
Common::SetupInfo SetupOf(const Common::SmBios& smBios);

/// Adds what SMBIOS knows of the memory: the array and its slots.
void AddMemory(const Common::SmBios& smBios, Common::MemoryInfo& memory);

/// Adds what SMBIOS knows of the processors; they meet in their order.
void AddProcessors(const Common::SmBios& smBios, std::vector<Common::ProcessorInfo>& processors);

}  // namespace Norvik::Machine
