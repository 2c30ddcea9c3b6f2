#include "documents/SectionKeys.h"

#include "documents/MachineSections.h"

namespace Norvik::Documents {

std::vector<std::string> SectionKeys() {
  std::vector<std::string> keys;
  for (const MachineSection& section : MachineSections()) keys.push_back(section.key);
  return keys;
}

std::vector<std::string> IdentityOfSection(const std::string& section) {
  const MachineSection* const known = FindMachineSection(section);
  return known ? known->identity : std::vector<std::string>();
}

}  // namespace Norvik::Documents
