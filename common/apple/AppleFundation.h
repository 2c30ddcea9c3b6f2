#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <wx/string.h>

#include "common/Api.h"

namespace Norvik::Common {

/// Reads the I/O registry and Core Foundation's dictionaries. None of it raises.
struct NORVIK_COMMON_API AppleFundation {
  /// The first object of a class, or of one that inherits from it, below an entry in the plane
  /// "IOService", at any depth; 0 if there is none or the entry is 0. The caller owns the handle.
  static unsigned int FindRecursiveChildren(unsigned int& entry, const char* className);

  /// The text of a key; empty if the dictionary is null, or the key is absent or holds no text.
  static wxString GetCFDictionaryStringProperty(CFDictionaryRef& dict, const char* key);

  /// The number of a key, negative ones and fractions cut as a conversion does; 0 if the dictionary
  /// is null, or the key is absent or holds no number.
  static unsigned long long GetCFDictionaryIntergerProperty(CFDictionaryRef& dict, const char* key);

  /// Reads a property list file, XML or binary. Null if it cannot be read or is none. The caller
  /// owns the object, whose type is open.
  static CFPropertyListRef CreateMyPropertyListFromFile(CFURLRef url);
};

}  // namespace Norvik::Common
