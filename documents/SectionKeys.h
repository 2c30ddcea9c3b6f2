#pragma once

#include <string>
#include <vector>

namespace Norvik::Documents {

/// The keys of all sections of a machine inventory.
std::vector<std::string> SectionKeys();

/// The keys of the fields that identify a record of a section; empty for a single record and for an
/// unknown section.
std::vector<std::string> IdentityOfSection(const std::string& section);

}  // namespace Norvik::Documents
