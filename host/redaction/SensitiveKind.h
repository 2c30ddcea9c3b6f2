#pragma once

#include <string>
#include <vector>

#include "host/redaction/Replacements.h"

namespace Norvik::Host {

/// What a sensitive value is: it decides which of its forms and parts are replaced as well.
enum class SensitiveKind {
  SERIAL,         ///< unless it is a text in place of a number, as "None"
  NAME,           ///< of a person or an account, and each word of it
  HOST,           ///< name or address, also with a port or a path, or a URI
  SEARCH_DOMAIN,  ///< one on each line; a single label belongs to nobody
  HEX,            ///< hexadecimal digits, as of a link-layer address
  ADDRESS,        ///< IPv4 or IPv6
  SECRET,         ///< unless it says in a word whether there is one, as "required"
  TEXT,           ///< replaced as a whole
  // In documents only.
  LABEL,     ///< a user's name for a thing, replaced only where it is the value
  URI,       ///< all but its scheme
  PATH,      ///< the parts that name users, and what may be found in its other parts
  WORDS,     ///< what is found in it by its form or as a known value
  TITLE,     ///< the known values in it
  POSITION,  ///< a number that says where the machine is
  HARMLESS,  ///< never replaced
};

/// Whether this is the name of a user, a group or a host that many machines have.
bool IsCommonName(const std::string& name);
/// Whether this is the name of a volume that many machines have.
bool IsCommonVolume(const std::string& name);

/// Adds a value, if it is one, or the names of users and hosts in it. Names that all machines have
/// are ignored.
void AddSensitive(SensitiveKind kind, const std::string& text, Replacements& replacements);

/// The words between any of the separators, which may follow each other.
std::vector<std::string> WordsIn(const std::string& text, const char* separators);

}  // namespace Norvik::Host
