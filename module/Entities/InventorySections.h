#pragma once

#include <tuple>
#include <type_traits>

#include "module/Entities/InventoryKOBInfo.h"

namespace Norvik::KOB {

/// How a section is written, read and compared.
enum class SectionKind {
  Single,         ///< one record without a key
  Location,       ///< a single record that is written as null if it is zero
  Device,         ///< a single record that is written but never read, and copied, not compared
  List,           ///< records that are matched by `HasSameKey`
  ListOfUpdates,  ///< a list whose created and deleted records no incremental document holds
};

/// A section of the document: its key and its value, a member of the inventory or, for the two
/// lists of local accounts, of its `localUsers`.
template <SectionKind sectionKind, class Owner, class SectionValue>
struct InventorySection {
  using Value = SectionValue;
  static constexpr SectionKind kind = sectionKind;
  static constexpr bool isList = kind == SectionKind::List || kind == SectionKind::ListOfUpdates;

  const char* key;
  Value Owner::*member;

  Value& In(InventoryKOBInfo& inventory) const { return OwnerIn(inventory).*member; }
  const Value& In(const InventoryKOBInfo& inventory) const { return OwnerIn(inventory).*member; }

 private:
  template <class Inventory>
  static auto& OwnerIn(Inventory& inventory) {
    if constexpr (std::is_same_v<Owner, LocalUserInfo>) {
      return inventory.localUsers;
    } else {
      return inventory;
    }
  }
};

template <SectionKind kind, class Owner, class Value>
constexpr InventorySection<kind, Owner, Value> SectionOf(const char* key, Value Owner::*member) {
  return {key, member};
}

/// Every section, once, in the order in which a document is read. Reader, writer, comparison and
/// the tools for documents all walk this list.
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
                         SectionOf<Kind::List>("group", &LocalUserInfo::groups),
                         SectionOf<Kind::List>("user", &LocalUserInfo::users));
}

/// Calls `action` with each section, in order.
template <class Action>
void ForEachSection(Action action) {
  std::apply([&](const auto&... section) { (action(section), ...); }, Sections());
}

}  // namespace Norvik::KOB
