#import <Foundation/Foundation.h>
#include <IOKit/IOKitLib.h>

#include "platform/MachineFacts.h"
#include "platform/ScopedHandle.h"
#include "platform/mac/LastFix.h"

namespace Norvik::Platform {

namespace {

/// Property lists have no sets, which a few drivers store.
id ListableOf(id value) {
  if ([value isKindOfClass:[NSSet class]]) return ListableOf([value allObjects]);
  if ([value isKindOfClass:[NSArray class]]) {
    NSMutableArray* const items = [NSMutableArray array];
    for (id item in value) [items addObject:ListableOf(item)];
    return items;
  }
  if ([value isKindOfClass:[NSDictionary class]]) {
    NSMutableDictionary* const items = [NSMutableDictionary dictionary];
    [value enumerateKeysAndObjectsUsingBlock:^(id key, id item, BOOL*) {
      if ([key isKindOfClass:[NSString class]]) items[key] = ListableOf(item);
    }];
    return items;
  }
  const bool isListable =
      [value isKindOfClass:[NSString class]] || [value isKindOfClass:[NSNumber class]] ||
      [value isKindOfClass:[NSData class]] || [value isKindOfClass:[NSDate class]];
  return isListable ? value : [value description];
}

/// The superclasses of a class, the nearest first.
NSArray<NSString*>* SuperclassesOf(NSString* className) {
  NSMutableArray<NSString*>* const names = [NSMutableArray array];
  NSString* name = className;
  while (name) {
    name = CFBridgingRelease(IOObjectCopySuperclassForClass((__bridge CFStringRef)name));
    if (name) [names addObject:name];
  }
  return names;
}

NSMutableDictionary* DictionaryOf(io_registry_entry_t entry, NSArray<NSString*>* planes) {
  CFMutableDictionaryRef properties = nullptr;
  NSMutableDictionary* list = nil;
  if (IORegistryEntryCreateCFProperties(entry, &properties, kCFAllocatorDefault, 0) ==
      kIOReturnSuccess) {
    list = ListableOf(CFBridgingRelease(properties));
  }
  if (!list) list = [NSMutableDictionary dictionary];
  io_name_t name = {};
  if (IORegistryEntryGetName(entry, name) == kIOReturnSuccess) {
    NSString* const text = @(name);
    list[@"IORegistryEntryName"] = text ? text : @"";
  }
  NSString* const className = CFBridgingRelease(IOObjectCopyClass(entry));
  if (className) list[@"IOObjectClass"] = className;
  if (className) list[@"IOObjectInherits"] = SuperclassesOf(className);
  NSMutableArray<NSString*>* const own = [NSMutableArray array];
  for (NSString* plane in planes) {
    if (IORegistryEntryInPlane(entry, plane.UTF8String)) [own addObject:plane];
  }
  list[@"IORegistryEntryPlanes"] = own;
  return list;
}

/// The tree of the plane "IOService". The kernel nests its entries far less deep than the stack.
NSDictionary* TreeOf(io_registry_entry_t entry, NSArray<NSString*>* planes) {
  NSMutableDictionary* const list = DictionaryOf(entry, planes);
  io_iterator_t found = IO_OBJECT_NULL;
  if (IORegistryEntryGetChildIterator(entry, kIOServicePlane, &found) != kIOReturnSuccess) {
    return list;
  }
  const IoObject children(found);
  NSMutableArray* const trees = [NSMutableArray array];
  while (const io_object_t next = IOIteratorNext(children.Get())) {
    const IoObject child(next);
    [trees addObject:TreeOf(child.Get(), planes)];
  }
  if (trees.count > 0) list[@"IORegistryEntryChildren"] = trees;
  return list;
}

/// Empty if the registry cannot be read.
NSData* RegistryData() {
  const IoObject root(IORegistryGetRootEntry(MACH_PORT_NULL));
  if (!root) return nil;
  NSDictionary* const planes = CFBridgingRelease(
      IORegistryEntryCreateCFProperty(root.Get(), CFSTR(kIORegistryPlanesKey), nullptr, 0));
  NSArray<NSString*>* names = @[ @kIOServicePlane ];
  if ([planes isKindOfClass:[NSDictionary class]]) {
    names = [planes.allKeys sortedArrayUsingSelector:@selector(compare:)];
  }
  return [NSPropertyListSerialization dataWithPropertyList:TreeOf(root.Get(), names)
                                                    format:NSPropertyListXMLFormat_v1_0
                                                   options:0
                                                     error:nil];
}

NSData* LocationData() {
  const auto fix = LastFix();
  NSMutableArray* const fixes = [NSMutableArray array];
  if (fix) {
    [fixes addObject:@{
      @"afterSeconds" : @0,
      @"latitude" : @(fix->latitude),
      @"longitude" : @(fix->longitude),
      @"altitude" : @(fix->altitude),
      @"speed" : @(fix->speed)
    }];
  }
  return [NSJSONSerialization dataWithJSONObject:@{
    @"enabled" : @(LocationService::IsEnabled()),
    @"fixes" : fixes
  }
                                         options:NSJSONWritingSortedKeys
                                           error:nil];
}

std::string BytesOf(NSData* data) {
  return data ? std::string(static_cast<const char*>(data.bytes), data.length) : std::string();
}

}  // namespace

std::map<std::string, std::string> MachineFacts() {
  @autoreleasepool {
    return {{"ioregistry.plist", BytesOf(RegistryData())},
            {"location.json", BytesOf(LocationData())}};
  }
}

}  // namespace Norvik::Platform
