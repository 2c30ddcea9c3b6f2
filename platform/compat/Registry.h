#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/compat/PropertyListReader.h"

namespace Norvik::Platform {

/// An entry of a recorded I/O registry.
struct RegistryEntry {
  std::string name;
  std::string className;
  std::vector<std::string> superclasses;
  /// Planes that the entry is in; by default only "IOService".
  std::vector<std::string> planes;
  plist_t properties = nullptr;  ///< its dictionary, owned by the registry
  const RegistryEntry* parent = nullptr;
  std::vector<const RegistryEntry*> children;

  bool IsIn(std::string_view plane) const;
  bool IsA(std::string_view wantedClass) const;
};

/// Raw bytes of an SMBIOS table and its entry point.
struct SmBiosBytes {
  std::string entryPoint;
  std::string table;
};

/// The I/O registry of a recording, in the format of `ioreg -a -l`: the tree of the plane
/// "IOService". In addition, an entry may have the keys "IOObjectInherits", its superclasses, and
/// "IORegistryEntryPlanes", the planes that it is in. Another plane has the same tree without the
/// entries that are not in it. An SMBIOS table that is given in addition is the last entry, the
/// service "AppleSMBIOS".
class Registry {
 public:
  using Entries = std::vector<const RegistryEntry*>;

  /// The registry is empty if the bytes are no such list.
  explicit Registry(std::string_view recording, const SmBiosBytes& smBios = {});
  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;

  /// Entries of a class or one of its subclasses, each before those below it.
  Entries OfClass(std::string_view wantedClass) const;
  /// Children in a plane; with `recursively` everything below, each before those below it.
  static Entries Below(const RegistryEntry& entry, std::string_view plane, bool recursively);
  /// Null at the root, and for an entry that is not in the plane.
  static const RegistryEntry* ParentOf(const RegistryEntry& entry, std::string_view plane);
  /// Whether a key of an entry's dictionary is a property of the entry, not a part of the tree.
  static bool IsProperty(std::string_view key);

 private:
  void Add(plist_t node, RegistryEntry* parent);
  void AddSmBios(const SmBiosBytes& smBios);
  RegistryEntry& NewEntry(plist_t node, RegistryEntry* parent);

  PropertyList list_;
  PropertyList smBios_;
  std::deque<RegistryEntry> entries_;
};

}  // namespace Norvik::Platform
