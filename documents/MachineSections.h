#pragma once

#include <string>
#include <vector>

#include "module/Entities/InventorySections.h"

namespace Norvik::Documents {

/// What a reader of documents has to know of a section of the machine inventory.
struct MachineSection {
  std::string key;
  KOB::SectionKind kind;
  /// Of a list: keys of the fields that tell its records apart, in the order of the record.
  std::vector<std::string> identity;

  bool IsList() const { return !identity.empty(); }
};

/// Every section, as the module itself lists them.
const std::vector<MachineSection>& MachineSections();

/// Null if there is none of that key.
const MachineSection* FindMachineSection(const std::string& key);

}  // namespace Norvik::Documents
