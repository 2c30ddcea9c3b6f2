#include "module/Inventory/RegistryProperties.h"

#include "common/apple/AppleFundation.h"

namespace Norvik::KOB {

using Common::AppleFundation;

RegistryProperties::RegistryProperties(io_registry_entry_t entry) {
  CFMutableDictionaryRef properties = nullptr;
  if (entry != IO_OBJECT_NULL && IORegistryEntryCreateCFProperties(
                                     entry, &properties, kCFAllocatorDefault, 0) == KERN_SUCCESS) {
    dictionary_.Reset(properties);
  }
}

wxString RegistryProperties::Text(const char* key) {
  return AppleFundation::GetCFDictionaryStringProperty(dictionary_.Ref(), key);
}

unsigned long long RegistryProperties::Number(const char* key) {
  return AppleFundation::GetCFDictionaryIntergerProperty(dictionary_.Ref(), key);
}

}  // namespace Norvik::KOB
