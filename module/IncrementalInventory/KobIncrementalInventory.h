#pragma once

#include <algorithm>
#include <boost/optional.hpp>
#include <memory>

#include "module/Entities/InventoryKOBInfo.h"

namespace Norvik::KOB {

/// The comparison of two inventories. An object serves one comparison, on one thread.
class KobIncrementalInventory {
 public:
  /// Neither may be null.
  KobIncrementalInventory(std::unique_ptr<InventoryKOBInfo> previous,
                          std::unique_ptr<InventoryKOBInfo> current);

  /// The changes: an `IncrementalInventoryKOBInfo`, whose JSON is null if nothing has changed.
  std::unique_ptr<InventoryKOBInfo> GenerateIncrementalInventoryKOB() const;

  /// Compares two lists or vectors of records and appends to the first three arguments:
  ///   created  current records whose key no previous record has, in the current order
  ///   deleted  previous records whose key no current record has, in the previous order
  ///   updated  current records that differ from the first previous record with their key, in the
  ///            current order
  /// Deliberately a quadratic scan: the server relies on that order, and on the first record of a
  /// key standing for all records of that key, even where a later one is equal.
  template <class L, class D>
  static void GetItems(L& created, D& deleted, L& updated, const L& previous, const L& current) {
    for (const auto& record : previous) {
      const auto isSame = [&](const auto& other) { return other.HasSameKey(record); };
      if (std::none_of(current.begin(), current.end(), isSame)) deleted.emplace_back(record);
    }
    for (const auto& record : current) {
      const auto isSame = [&](const auto& other) { return record.HasSameKey(other); };
      const auto match = std::find_if(previous.begin(), previous.end(), isSame);
      if (match == previous.end()) {
        created.push_back(record);
      } else if (record != *match) {
        updated.push_back(record);
      }
    }
  }

  /// The current record if it differs from the previous one, otherwise nothing.
  template <class T>
  static boost::optional<T> GetUpdatedItems(const T& previous, const T& current) {
    return boost::make_optional(previous != current, current);
  }

 private:
  std::unique_ptr<InventoryKOBInfo> previous_;
  std::unique_ptr<InventoryKOBInfo> current_;
};

}  // namespace Norvik::KOB
