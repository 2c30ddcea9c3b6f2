#pragma once

#include <tuple>

#include "module/Entities/InventoryKOBInfo.h"

namespace Norvik::KOB {

/// How a section is written, read and compared.
enum class SectionKind {
  Single,         ///< one record without identity
  Location,       ///< single, written as null when it is zero
  Device,         ///< single, written but never read, copied instead of compared
  List,           ///< records that are told apart by `HasSameKey`
  ListOfUpdates,  ///< list whose created and deleted records no incremental document shows
};

/// A section of the document: its key, and the way from an inventory to its value, which is a
/// member or a member of a member.
template <SectionKind sectionKind, class SectionValue, class... Path>
struct InventorySection {
  using Value = SectionValue;
  static constexpr SectionKind kind = sectionKind;
  static constexpr bool isList = kind == SectionKind::List || kind == SectionKind::ListOfUpdates;

  const char* key;
  std::tuple<Path...> path;

  Value& In(InventoryKOBInfo& inventory) const { return Follow(inventory); }
  const Value& In(const InventoryKOBInfo& inventory) const { return Follow(inventory); }

 private:
  template <class Inventory>
  auto& Follow(Inventory& inventory) const {
    return std::apply(
        [&](auto... members) -> auto& { return Member(inventory, members...); }, path);
  }
  template <class Object, class First, class... Rest>
  static auto& Member(Object& object, First first, Rest... rest) {
    if constexpr (sizeof...(rest) == 0) {
      return object.*first;
    } else {
      return Member(object.*first, rest...);
    }
  }
};

template <SectionKind kind, class Value>
constexpr InventorySection<kind, Value, Value InventoryKOBInfo::*> SectionOf(
    const char* key, Value InventoryKOBInfo::*member) {
  return {key, {member}};
}
template <SectionKind kind, class Outer, class Value>
constexpr InventorySection<kind, Value, Outer InventoryKOBInfo::*, Value Outer::*> SectionOf(
    const char* key, Outer InventoryKOBInfo::*outer, Value Outer::*member) {
  return {key, {outer, member}};
}

/// Every section, once, in the order in which a document is read. Whatever goes through all
/// sections walks this list.
constexpr auto Sections() {
  using Of = InventoryKOBInfo;
  using Kind = SectionKind;
  return std::make_tuple(SectionOf<Kind::List>("cdrom", &Of::cdroms),
                         SectionOf<Kind::Single>("agentConfiguration", &Of::configuration),
                         SectionOf<Kind::Device>("device", &Of::device),
                         SectionOf<Kind::List>("drivers", &Of::hardware),
                         SectionOf<Kind::List>("features", &Of::features),
                         SectionOf<Kind::Location>("location", &Of::location),
                         SectionOf<Kind::List>("keyboard", &Of::keyboards),
                         SectionOf<Kind::List>("displays", &Of::monitors),
                         SectionOf<Kind::List>("networkAdapter", &Of::networkAdapters),
                         SectionOf<Kind::List>("unitMappings", &Of::networkDrives),
                         SectionOf<Kind::Single>("os", &Of::operatingSystem),
                         SectionOf<Kind::List>("printer", &Of::printers),
                         SectionOf<Kind::List>("startupCommand", &Of::startupCommands),
                         SectionOf<Kind::List>("service", &Of::services),
                         SectionOf<Kind::List>("sharedResources", &Of::sharedResources),
                         SectionOf<Kind::Single>("bios", &Of::firmware),
                         SectionOf<Kind::List>("boards", &Of::systemSlots),
                         SectionOf<Kind::List>("videoCards", &Of::videoCards),
                         SectionOf<Kind::List>("software", &Of::software),
                         SectionOf<Kind::List>("disk", &Of::physicalDisks),
                         SectionOf<Kind::ListOfUpdates>("memorySlot", &Of::memorySlots),
                         SectionOf<Kind::Single>("memory", &Of::memory),
                         SectionOf<Kind::List>("portConnectors", &Of::portConnectors),
                         SectionOf<Kind::List>("processorSlot", &Of::processors),
                         SectionOf<Kind::Single>("setup", &Of::setup),
                         SectionOf<Kind::List>("group", &Of::localUsers, &LocalUserInfo::groups),
                         SectionOf<Kind::List>("user", &Of::localUsers, &LocalUserInfo::users));
}

/// Calls `action` with each section, in order.
template <class Action>
void ForEachSection(Action action) {
  std::apply([&](const auto&... section) { (action(section), ...); }, Sections());
}

}  // namespace Norvik::KOB
