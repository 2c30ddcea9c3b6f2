#pragma once

// The calls of I/O Kit that are used here, for systems without it. They work on the registry of a
// recorded Mac; without one there is no service.

#include <CoreFoundation/CoreFoundation.h>
#include <stdint.h>

typedef int kern_return_t;
typedef int boolean_t;
typedef unsigned int mach_port_t;
typedef kern_return_t IOReturn;
typedef UInt32 IOOptionBits;
typedef mach_port_t io_object_t;
typedef io_object_t io_iterator_t;
typedef io_object_t io_registry_entry_t;
typedef io_object_t io_service_t;
typedef char io_name_t[128];

enum { kIORegistryIterateRecursively = 0x00000001 };

#define KERN_SUCCESS 0
#define MACH_PORT_NULL 0
#define IO_OBJECT_NULL ((io_object_t)0)
#define kIOReturnSuccess KERN_SUCCESS
#define kIOReturnBadArgument ((IOReturn)0xe00002c2)
#define kIOReturnNoDevice ((IOReturn)0xe00002c0)
#define kIOServicePlane "IOService"
#define kIOProviderClassKey "IOProviderClass"

CFMutableDictionaryRef IOServiceMatching(const char* name);
/// Releases one reference to the matching dictionary, as does the next call.
io_service_t IOServiceGetMatchingService(mach_port_t mainPort, CFDictionaryRef matching);
kern_return_t IOServiceGetMatchingServices(mach_port_t mainPort, CFDictionaryRef matching,
                                           io_iterator_t* existing);

io_object_t IOIteratorNext(io_iterator_t iterator);
kern_return_t IOObjectRelease(io_object_t object);
boolean_t IOObjectConformsTo(io_object_t object, const io_name_t className);

kern_return_t IORegistryEntryGetName(io_registry_entry_t entry, io_name_t name);
CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key,
                                          CFAllocatorRef allocator, IOOptionBits options);
kern_return_t IORegistryEntryCreateCFProperties(io_registry_entry_t entry,
                                                CFMutableDictionaryRef* properties,
                                                CFAllocatorRef allocator, IOOptionBits options);
kern_return_t IORegistryEntryGetParentEntry(io_registry_entry_t entry, const io_name_t plane,
                                            io_registry_entry_t* parent);
kern_return_t IORegistryEntryGetChildEntry(io_registry_entry_t entry, const io_name_t plane,
                                           io_registry_entry_t* child);
kern_return_t IORegistryEntryGetChildIterator(io_registry_entry_t entry, const io_name_t plane,
                                              io_iterator_t* iterator);
kern_return_t IORegistryEntryCreateIterator(io_registry_entry_t entry, const io_name_t plane,
                                            IOOptionBits options, io_iterator_t* iterator);
