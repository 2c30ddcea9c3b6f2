#pragma once

#include <string>

#include "host/recording/Replacements.h"

namespace Norvik::Host {

// Each adds what it finds to the replacements.

/// Protects the words that the recording cannot do without: those of calls of tools in answers.txt,
/// up to a name, and the keys of property lists and JSON. Before the others.
/// @param file name of the file
void ProtectKeys(const std::string& file, const std::string& content, Replacements& replacements);

/// Values of the keys of a full document that hold serial numbers, names, addresses and UUIDs.
/// @param document JSON; anything else holds nothing
void AddValuesOfDocument(const std::string& document, Replacements& replacements);

/// Accounts and host names in files of a recording, by the file's name.
void AddValuesOfFacts(const std::string& file, const std::string& content,
                      Replacements& replacements);

/// Values in the output of a tool or in a file, whatever its format: UUIDs and addresses by their
/// form, serial numbers and secrets by the key before them, users and hosts by the URI around them,
/// and keys in PEM.
void AddValuesOfText(const std::string& text, Replacements& replacements);

}  // namespace Norvik::Host
