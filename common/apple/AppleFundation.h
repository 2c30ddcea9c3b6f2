#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <wx/string.h>

#include <list>

#include "common/Api.h"

namespace Norvik::Common {

/// Reads the I/O registry and dictionaries of Core Foundation. Nothing here throws.
struct NORVIK_COMMON_API AppleFundation {
  /// The first object of a class, or of a class derived from it, at any depth below an entry in the
  /// plane "IOService". 0 if no object matches, or the entry is 0. The caller owns the handle.
  static unsigned int FindRecursiveChildren(unsigned int& entry, const char* className);

  /// The text of a key. Empty if the dictionary is null, or the key is missing or holds no text.
  static wxString GetCFDictionaryStringProperty(CFDictionaryRef& dict, const char* key);

  /// The number of a key, converted: a fraction is cut off, a negative number wraps. 0 if the
  /// dictionary is null, or the key is missing or holds no number.
  static unsigned long long GetCFDictionaryIntergerProperty(CFDictionaryRef& dict, const char* key);

  /// Reads a property list file, XML or binary. Null if it cannot be read or is no property list.
  /// The caller owns the object, which may be of any type.
  static CFPropertyListRef CreateMyPropertyListFromFile(CFURLRef url);
};

struct NORVIK_COMMON_API SataInfo {
  /// Appends the I/O registry entries of the SATA devices at any depth below a controller, in the
  /// order of the registry. The caller owns the handles.
  static void GetSataDevicesEntry(unsigned int& controller, std::list<unsigned int>& entries);
};

}  // namespace Norvik::Common
