#pragma once

#include <memory>

#include "common/identification/FirstInventoryInfo.h"
#include "common/identification/SmBios.h"

namespace Norvik::Machine {

/// The machine's SMBIOS table; one that is not valid if there is none or this process may not read
/// it. Never null.
std::shared_ptr<Common::SmBios> ReadSmBios();

/// Facts of the machine, each reported to the progress listener as the sections of the document
/// that it fills. What cannot be found or read is left empty. Holds only what stays the same while
/// nobody changes the machine, so that two inventories of it are equal.
Common::FirstInventoryInfo GatherFirstInventory(const Common::SmBios& smBios);

}  // namespace Norvik::Machine
