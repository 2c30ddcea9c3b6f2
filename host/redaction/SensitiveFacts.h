#pragma once

#include <string>

#include "host/redaction/Replacements.h"

namespace Norvik::Host {

/// Adds the accounts and host names in files of a recording, by the file's name.
void AddValuesOfFacts(const std::string& file, const std::string& content,
                      Replacements& replacements);

}  // namespace Norvik::Host
