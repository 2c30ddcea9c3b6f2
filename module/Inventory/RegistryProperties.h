#pragma once

#include <wx/string.h>

#include "platform/ScopedHandle.h"

namespace Norvik::KOB {

/// The properties of an entry of the I/O registry, as they stood when this was made.
class RegistryProperties {
 public:
  /// @param entry stays the caller's; with 0 for none, every property is absent
  explicit RegistryProperties(io_registry_entry_t entry);

  /// False if there is no entry, or it does not tell.
  explicit operator bool() const { return static_cast<bool>(dictionary_); }
  /// Empty if the key is absent or holds no text.
  wxString Text(const char* key);
  /// 0 if the key is absent or holds no number.
  unsigned long long Number(const char* key);

 private:
  Platform::CfRef<CFDictionaryRef> dictionary_;
};

}  // namespace Norvik::KOB
