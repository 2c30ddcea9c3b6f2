#include "platform/compat/Registry.h"

#include <algorithm>

namespace Norvik::Platform {

namespace {

constexpr char CHILDREN[] = "IORegistryEntryChildren";

/// Keys that `ioreg -a` writes in addition to the properties of an entry.
constexpr std::string_view TREE_KEYS[] = {
    "IOObjectClass",      "IOObjectInherits",        "IOObjectRetainCount", CHILDREN,
    "IORegistryEntryID",  "IORegistryEntryLocation", "IORegistryEntryName", "IORegistryEntryPlanes",
    "IOServiceBusyState", "IOServiceBusyTime",       "IOServiceState",
};

std::vector<std::string> TextsOf(plist_t array) {
  std::vector<std::string> texts;
  ForEachElement(array, [&](plist_t element) { texts.push_back(TextOf(element)); });
  return texts;
}

template <class Texts>
bool Holds(const Texts& texts, std::string_view text) {
  return std::find(std::begin(texts), std::end(texts), text) != std::end(texts);
}

/// In place of a child that is not in the plane come the entries below it.
void AddBelow(const RegistryEntry& entry, std::string_view plane, bool recursively,
              Registry::Entries& found) {
  for (const RegistryEntry* child : entry.children) {
    const bool isIn = child->IsIn(plane);
    if (isIn) found.push_back(child);
    if (!isIn || recursively) AddBelow(*child, plane, recursively, found);
  }
}

}  // namespace

bool RegistryEntry::IsIn(std::string_view plane) const { return Holds(planes, plane); }

bool RegistryEntry::IsA(std::string_view wantedClass) const {
  return className == wantedClass || Holds(superclasses, wantedClass);
}

Registry::Registry(std::string_view recording, const SmBiosBytes& smBios)
    : list_(ReadPropertyList(recording)) {
  if (list_) {
    // For a single class the tool prints an array of trees.
    ForEachElement(list_.get(), [this](plist_t node) { Add(node, nullptr); });
    Add(list_.get(), nullptr);
  }
  AddSmBios(smBios);
}

void Registry::AddSmBios(const SmBiosBytes& smBios) {
  if (smBios.entryPoint.empty()) return;
  smBios_.reset(plist_new_dict());
  const auto set = [this](const char* key, const std::string& bytes) {
    plist_dict_set_item(smBios_.get(), key, plist_new_data(bytes.data(), bytes.size()));
  };
  set("SMBIOS-EPS", smBios.entryPoint);
  set("SMBIOS", smBios.table);
  RegistryEntry& entry = NewEntry(smBios_.get(), nullptr);
  entry.name = entry.className = "AppleSMBIOS";
}

// Recursion is safe: the reader limits the nesting of the list.
void Registry::Add(plist_t node, RegistryEntry* parent) {
  if (plist_get_node_type(node) != PLIST_DICT) return;
  RegistryEntry& entry = NewEntry(node, parent);
  ForEachElement(plist_dict_get_item(node, CHILDREN), [&](plist_t child) { Add(child, &entry); });
}

RegistryEntry& Registry::NewEntry(plist_t node, RegistryEntry* parent) {
  RegistryEntry& entry = entries_.emplace_back();
  entry.properties = node;
  entry.name = TextOf(plist_dict_get_item(node, "IORegistryEntryName"));
  entry.className = TextOf(plist_dict_get_item(node, "IOObjectClass"));
  entry.superclasses = TextsOf(plist_dict_get_item(node, "IOObjectInherits"));
  entry.planes = TextsOf(plist_dict_get_item(node, "IORegistryEntryPlanes"));
  if (entry.planes.empty()) entry.planes = {"IOService"};
  entry.parent = parent;
  if (parent) parent->children.push_back(&entry);
  return entry;
}

Registry::Entries Registry::OfClass(std::string_view wantedClass) const {
  Entries found;
  for (const RegistryEntry& entry : entries_) {
    if (entry.IsA(wantedClass)) found.push_back(&entry);
  }
  return found;
}

Registry::Entries Registry::Below(const RegistryEntry& entry, std::string_view plane,
                                  bool recursively) {
  Entries found;
  if (entry.IsIn(plane)) AddBelow(entry, plane, recursively, found);
  return found;
}

const RegistryEntry* Registry::ParentOf(const RegistryEntry& entry, std::string_view plane) {
  if (!entry.IsIn(plane)) return nullptr;
  const RegistryEntry* parent = entry.parent;
  while (parent && !parent->IsIn(plane)) parent = parent->parent;
  return parent;
}

bool Registry::IsProperty(std::string_view key) { return !Holds(TREE_KEYS, key); }

}  // namespace Norvik::Platform
