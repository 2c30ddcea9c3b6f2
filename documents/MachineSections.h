#pragma once

#include <string>
#include <vector>

#include "module/Entities/InventorySections.h"

namespace Norvik::Documents {

/// A section of the documents of the machine inventory.
struct MachineSection {
  std::string key;
  KOB::SectionKind kind;
  /// For a list: the keys of the fields that identify a record, in the order of the record's table.
  /// Empty for a single record.
  std::vector<std::string> identity;

  bool IsList() const { return !identity.empty(); }
};

/// Every section, in the order of `KOB::Sections`.
const std::vector<MachineSection>& MachineSections();

/// The section of a key; null if there is no such section.
const MachineSection* FindMachineSection(const std::string& key);

}  // namespace Norvik::Documents
