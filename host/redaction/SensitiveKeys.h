#pragma once

#include <optional>
#include <string>

#include "host/redaction/Replacements.h"
#include "host/redaction/SensitiveKind.h"

namespace Norvik::Host {

/// What the values of a key are, as "serial-number" or "API_TOKEN"; empty for most keys.
std::optional<SensitiveKind> KindOfKey(std::string key);

/// Protects the words that the recording cannot do without: those of calls of tools in answers.txt,
/// up to a name, and the keys of property lists and JSON. Before anything is added.
/// @param file name of the file
void ProtectKeys(const std::string& file, const std::string& content, Replacements& replacements);

/// Adds the values that are known by the key before them: in property lists, XML or binary, in
/// options of programs, and in lines "key: value", "key = value" and "key=value".
/// @param text of any format; damaged ones as far as they can be read
void AddKeyedValues(const std::string& text, Replacements& replacements);

}  // namespace Norvik::Host
