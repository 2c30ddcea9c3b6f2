#pragma once

#include <string>

#include "host/recording/Replacements.h"

namespace Norvik::Host {

// Each adds what it finds to the replacements.

/// Values of the keys of a full document that hold serial numbers, names, addresses and UUIDs.
/// @param document JSON; anything else holds nothing
void AddValuesOfDocument(const std::string& document, Replacements& replacements);

/// Accounts and host names in files of a recording, by the file's name.
void AddValuesOfFacts(const std::string& file, const std::string& content,
                      Replacements& replacements);

}  // namespace Norvik::Host
