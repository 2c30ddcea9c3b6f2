#include <IOKit/IOKitLib.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "platform/compat/CfObjects.h"
#include "platform/compat/IoHandles.h"
#include "platform/compat/Recording.h"

using namespace Norvik::Platform;

namespace {

/// The class in a matching dictionary. Releases the dictionary, as Apple's calls do.
std::string TakeMatching(CFDictionaryRef matching, const char* call) {
  const auto& values = CfValueAs<CfDictionary>(matching, call).values;
  const auto found = values.find(kIOProviderClassKey);
  std::string className;
  if (found != values.end()) className = CfValueAs<std::string>(found->second, call);
  CFRelease(matching);
  return className;
}

kern_return_t StoreIterator(const HeldEntry& held, const char* plane, bool recursively,
                            io_iterator_t* iterator) {
  *iterator = MakeIoHandle(
      HeldIterator{held.registry, Registry::Below(*held.entry, plane, recursively), 0});
  return kIOReturnSuccess;
}

kern_return_t StoreEntry(const HeldEntry& held, const RegistryEntry* found,
                         io_registry_entry_t* stored) {
  *stored = found ? MakeIoHandle(HeldEntry{held.registry, found}) : IO_OBJECT_NULL;
  return found ? kIOReturnSuccess : kIOReturnNoDevice;
}

}  // namespace

CFMutableDictionaryRef IOServiceMatching(const char* name) {
  CfDictionary matching;
  matching.values[kIOProviderClassKey] = MakeCfObject(std::string(name));
  // Apple's types say const by the pointer only.
  return const_cast<CFMutableDictionaryRef>(
      static_cast<CFDictionaryRef>(MakeCfObject(std::move(matching))));
}

io_service_t IOServiceGetMatchingService(mach_port_t, CFDictionaryRef matching) {
  const auto registry = CurrentRegistry();
  const auto found = registry->OfClass(TakeMatching(matching, "IOServiceGetMatchingService"));
  return found.empty() ? IO_OBJECT_NULL : MakeIoHandle(HeldEntry{registry, found.front()});
}

kern_return_t IOServiceGetMatchingServices(mach_port_t, CFDictionaryRef matching,
                                           io_iterator_t* existing) {
  const auto registry = CurrentRegistry();
  auto found = registry->OfClass(TakeMatching(matching, "IOServiceGetMatchingServices"));
  *existing = MakeIoHandle(HeldIterator{registry, std::move(found), 0});
  return kIOReturnSuccess;
}

io_object_t IOIteratorNext(io_iterator_t iterator) {
  if (iterator == IO_OBJECT_NULL) return IO_OBJECT_NULL;
  HeldEntry next = AdvanceIterator(iterator, "IOIteratorNext");
  return next.entry ? MakeIoHandle(std::move(next)) : IO_OBJECT_NULL;
}

kern_return_t IOObjectRelease(io_object_t object) {
  if (object == IO_OBJECT_NULL) return kIOReturnBadArgument;
  ReleaseIoHandle(object);
  return kIOReturnSuccess;
}

boolean_t IOObjectConformsTo(io_object_t object, const io_name_t className) {
  if (object == IO_OBJECT_NULL) return 0;
  return EntryOf(object, "IOObjectConformsTo").entry->IsA(className);
}

kern_return_t IORegistryEntryGetName(io_registry_entry_t entry, io_name_t name) {
  if (entry == IO_OBJECT_NULL) return kIOReturnBadArgument;
  const HeldEntry held = EntryOf(entry, "IORegistryEntryGetName");
  const std::string& text = held.entry->name;
  const std::size_t length = std::min(text.size(), sizeof(io_name_t) - 1);
  std::memcpy(name, text.data(), length);
  name[length] = '\0';
  return kIOReturnSuccess;
}

CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key,
                                          CFAllocatorRef, IOOptionBits) {
  if (entry == IO_OBJECT_NULL) return nullptr;
  constexpr char CALL[] = "IORegistryEntryCreateCFProperty";
  const HeldEntry held = EntryOf(entry, CALL);
  const std::string& name = CfValueAs<std::string>(key, CALL);
  if (!Registry::IsProperty(name)) return nullptr;
  const plist_t value = plist_dict_get_item(held.entry->properties, name.c_str());
  return value ? CfFromPropertyList(value) : nullptr;
}

kern_return_t IORegistryEntryCreateCFProperties(io_registry_entry_t entry,
                                                CFMutableDictionaryRef* properties, CFAllocatorRef,
                                                IOOptionBits) {
  if (entry == IO_OBJECT_NULL) return kIOReturnBadArgument;
  const HeldEntry held = EntryOf(entry, "IORegistryEntryCreateCFProperties");
  CfDictionary dictionary;
  ForEachKey(held.entry->properties, [&](const char* key, plist_t value) {
    if (!Registry::IsProperty(key) || dictionary.values.count(key) != 0) return;
    dictionary.values[key] = CfFromPropertyList(value);
  });
  *properties = const_cast<CFMutableDictionaryRef>(
      static_cast<CFDictionaryRef>(MakeCfObject(std::move(dictionary))));
  return kIOReturnSuccess;
}

kern_return_t IORegistryEntryGetParentEntry(io_registry_entry_t entry, const io_name_t plane,
                                            io_registry_entry_t* parent) {
  if (entry == IO_OBJECT_NULL) return kIOReturnBadArgument;
  const HeldEntry held = EntryOf(entry, "IORegistryEntryGetParentEntry");
  return StoreEntry(held, Registry::ParentOf(*held.entry, plane), parent);
}

kern_return_t IORegistryEntryGetChildEntry(io_registry_entry_t entry, const io_name_t plane,
                                           io_registry_entry_t* child) {
  if (entry == IO_OBJECT_NULL) return kIOReturnBadArgument;
  const HeldEntry held = EntryOf(entry, "IORegistryEntryGetChildEntry");
  const auto children = Registry::Below(*held.entry, plane, false);
  return StoreEntry(held, children.empty() ? nullptr : children.front(), child);
}

kern_return_t IORegistryEntryGetChildIterator(io_registry_entry_t entry, const io_name_t plane,
                                              io_iterator_t* iterator) {
  return IORegistryEntryCreateIterator(entry, plane, 0, iterator);
}

kern_return_t IORegistryEntryCreateIterator(io_registry_entry_t entry, const io_name_t plane,
                                            IOOptionBits options, io_iterator_t* iterator) {
  if (entry == IO_OBJECT_NULL) return kIOReturnBadArgument;
  const HeldEntry held = EntryOf(entry, "IORegistryEntryCreateIterator");
  return StoreIterator(held, plane, (options & kIORegistryIterateRecursively) != 0, iterator);
}
