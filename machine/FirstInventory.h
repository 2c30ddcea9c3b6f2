#pragma once

#include "common/identification/FirstInventoryInfo.h"
#include "common/identification/SmBios.h"

namespace Norvik::Machine {

/// The facts of the machine: those of the table, completed by what the system reports. A fact that
/// cannot be found or read is left empty. Contains no values that change by themselves, so two
/// inventories of an unchanged machine are equal. Each fact is reported to the progress listener,
/// as the sections of the document that it fills.
Common::FirstInventoryInfo GatherFirstInventory(const Common::SmBios& smBios);

}  // namespace Norvik::Machine
