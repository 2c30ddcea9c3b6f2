#pragma once

#include <fstream>
#include <string>

#include "module/Entities/InventorySections.h"
#include "support/RecordSuite.h"

namespace tests {

/// An inventory with a value of its own in each field of each section.
inline Norvik::KOB::InventoryKOBInfo FilledInventory() {
  Norvik::KOB::InventoryKOBInfo inventory;
  Filler filler;
  Norvik::KOB::ForEachSection([&](const auto& section) { filler.Fill(section.In(inventory)); });
  return inventory;
}

/// A document that is kept with a line for each section, in one line as it is written.
inline std::string GoldenText(const std::string& path) {
  std::ifstream file(path);
  std::string text;
  for (std::string line; std::getline(file, line);) text += line;
  return text;
}

}  // namespace tests
