#pragma once

#include <boost/optional.hpp>
#include <tuple>
#include <variant>

#include "module/Entities/InventorySections.h"
#include "module/IncrementalInventory/Entities/DeletedRecord.h"

namespace Norvik::KOB {

/// What an incremental document holds of the deletions and of the updates in a section, by the type
/// of the section's value. Here: a single record, which is updated or not.
template <class Value>
struct SectionChanges {
  using Deleted = std::monostate;
  using Updated = boost::optional<Value>;
};
template <template <class...> class Container, class Record, class Allocator>
struct SectionChanges<Container<Record, Allocator>> {
  using Deleted = Container<DeletedRecord<Record>>;
  using Updated = Container<Record, Allocator>;
};
template <>
struct SectionChanges<DeviceInfo> {
  using Deleted = std::monostate;
  using Updated = std::monostate;
};

/// The changes from one inventory to the next. The inherited lists hold the created records, and
/// the inherited device is that of the current inventory; the inherited single records are not
/// used. Deleted and updated records are found by the type of their section's value, as in
/// `Deleted<std::list<PrinterInfo>>()`.
class IncrementalInventoryKOBInfo final : public InventoryKOBInfo {
 public:
  IncrementalInventoryKOBInfo() = default;
  IncrementalInventoryKOBInfo(const IncrementalInventoryKOBInfo&) = default;
  IncrementalInventoryKOBInfo(IncrementalInventoryKOBInfo&&) = default;
  IncrementalInventoryKOBInfo& operator=(const IncrementalInventoryKOBInfo&) = default;
  IncrementalInventoryKOBInfo& operator=(IncrementalInventoryKOBInfo&&) = default;
  ~IncrementalInventoryKOBInfo() override;

  /// An object with "create", "delete", "device" and "update". Null if no section has changed,
  /// whatever the device holds.
  operator json::JSON() const override;

  // The parts of the document: an object with the sections that have changed, or null.
  json::JSON CreateInventorySection() const;
  json::JSON DeleteInventorySection() const;
  json::JSON UpdateInventorySection() const;

  /// The deleted records of a list section, in a container of the same kind.
  template <class Value>
  auto& Deleted() {
    return std::get<typename SectionChanges<Value>::Deleted>(deleted_);
  }
  template <class Value>
  const auto& Deleted() const {
    return std::get<typename SectionChanges<Value>::Deleted>(deleted_);
  }

  /// The current records that differ from the previous ones: a container for a list section, an
  /// optional for a single record.
  template <class Value>
  auto& Updated() {
    return std::get<typename SectionChanges<Value>::Updated>(updated_);
  }
  template <class Value>
  const auto& Updated() const {
    return std::get<typename SectionChanges<Value>::Updated>(updated_);
  }

 private:
  template <class... Section>
  static std::tuple<typename SectionChanges<typename Section::Value>::Deleted...> DeletedIn(
      const std::tuple<Section...>& sections);
  template <class... Section>
  static std::tuple<typename SectionChanges<typename Section::Value>::Updated...> UpdatedIn(
      const std::tuple<Section...>& sections);

  decltype(DeletedIn(Sections())) deleted_;
  decltype(UpdatedIn(Sections())) updated_;
};

}  // namespace Norvik::KOB
