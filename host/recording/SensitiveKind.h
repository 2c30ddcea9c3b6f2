#pragma once

#include <string>
#include <vector>

#include "host/recording/Replacements.h"

namespace Norvik::Host {

/// What a sensitive value is: it decides which of its forms and parts are replaced as well.
enum class SensitiveKind {
  SERIAL,         ///< unless it is a text in place of a number, as "None"
  NAME,           ///< of a person or an account, and each word of it
  HOST,           ///< name or address, also with a port or a path
  SEARCH_DOMAIN,  ///< one on each line; a single label belongs to nobody
  HEX,            ///< hexadecimal digits, as of a link-layer address
  ADDRESS,        ///< IPv4 or IPv6
  SECRET,         ///< unless it says in a word whether there is one, as "required"
  TEXT,           ///< replaced as a whole
};

/// Whether every machine has a user or a host of this name.
bool IsCommonName(const std::string& name);

/// Adds a value, if it is one. Names that all machines have are ignored.
void AddSensitive(SensitiveKind kind, const std::string& text, Replacements& replacements);

/// The words between any of the separators, which may follow each other.
std::vector<std::string> WordsIn(const std::string& text, const char* separators);

}  // namespace Norvik::Host
