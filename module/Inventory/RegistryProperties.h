#pragma once

#include <wx/string.h>

#include "platform/ScopedHandle.h"

namespace Norvik::KOB {

/// The properties of an entry of the I/O registry, as they were at construction.
class RegistryProperties {
 public:
  /// @param entry remains owned by the caller; if it is 0, every property is absent
  explicit RegistryProperties(io_registry_entry_t entry);

  /// False if there is no entry or its properties cannot be read.
  explicit operator bool() const { return static_cast<bool>(dictionary_); }
  /// Empty if the key is absent or its value is not a text.
  wxString Text(const char* key);
  /// 0 if the key is absent or its value is not a number.
  unsigned long long Number(const char* key);

 private:
  Platform::CfRef<CFDictionaryRef> dictionary_;
};

}  // namespace Norvik::KOB
