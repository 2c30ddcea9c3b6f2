#pragma once

#include <boost/optional.hpp>
#include <tuple>
#include <variant>

#include "module/Entities/InventorySections.h"
#include "module/IncrementalInventory/Entities/DeletedRecords.h"

namespace Norvik::KOB {

/// What can be deleted and updated in a section with such a value: here, in a single record.
template <class Value>
struct SectionChanges {
  using Deleted = std::monostate;
  using Updated = boost::optional<Value>;
};
template <template <class...> class Container, class Record, class Allocator>
struct SectionChanges<Container<Record, Allocator>> {
  using Deleted = Container<DeletedRecordOf<Record>>;
  using Updated = Container<Record, Allocator>;
};
template <>
struct SectionChanges<DeviceInfo> {
  using Deleted = std::monostate;
  using Updated = std::monostate;
};

/// What has changed from one inventory to the next. The inherited lists hold the created records
/// and the inherited device the present one; the inherited single records play no part. Deleted
/// and updated records are found by the value of their section, as in
/// `Deleted<std::list<PrinterInfo>>()`.
class IncrementalInventoryKOBInfo final : public InventoryKOBInfo {
 public:
  IncrementalInventoryKOBInfo() = default;
  IncrementalInventoryKOBInfo(const IncrementalInventoryKOBInfo&) = default;
  IncrementalInventoryKOBInfo(IncrementalInventoryKOBInfo&&) = default;
  IncrementalInventoryKOBInfo& operator=(const IncrementalInventoryKOBInfo&) = default;
  IncrementalInventoryKOBInfo& operator=(IncrementalInventoryKOBInfo&&) = default;
  ~IncrementalInventoryKOBInfo() override;

  /// An object with "create", "delete", "device" and "update"; null if nothing has changed,
  /// whatever the device holds.
  operator json::JSON() const override;

  // Parts of the document: an object with the sections that have something to tell, or null.
  json::JSON CreateInventorySection() const;
  json::JSON DeleteInventorySection() const;
  json::JSON UpdateInventorySection() const;

  /// Deleted records of a section, which is a list or a vector.
  template <class Value>
  auto& Deleted() {
    return std::get<typename SectionChanges<Value>::Deleted>(deleted_);
  }
  template <class Value>
  const auto& Deleted() const {
    return std::get<typename SectionChanges<Value>::Deleted>(deleted_);
  }

  /// Present records that differ from the previous ones: a container, or an optional if the
  /// section is a single record.
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
