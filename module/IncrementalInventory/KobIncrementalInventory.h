#pragma once

#include <boost/optional.hpp>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

#include "module/Entities/InventoryKOBInfo.h"

namespace Norvik::KOB {

/// Finds the first record of each key. The records must outlive the index.
template <class Record>
class FirstOfKeys {
 public:
  template <class Records>
  explicit FirstOfKeys(const Records& records) {
    for (const Record& record : records) first_.emplace(KeyOf(record), &record);
  }
  /// The first record with the same key as this one; null if there is no such record.
  const Record* Find(const Record& record) const {
    const auto found = first_.find(KeyOf(record));
    return found == first_.end() ? nullptr : found->second;
  }

 private:
  static auto KeyOf(const Record& record) {
    return std::apply([&](const auto... member) { return std::tie(record.*member...); },
                      Record::KeyMembers());
  }
  std::map<decltype(KeyOf(std::declval<const Record&>())), const Record*> first_;
};

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
  /// The first record of a key deliberately stands for all records of that key, even where a later
  /// one is equal.
  template <class L, class D>
  static void GetItems(L& created, D& deleted, L& updated, const L& previous, const L& current) {
    using Record = typename L::value_type;
    const FirstOfKeys<Record> before(previous);
    const FirstOfKeys<Record> now(current);
    for (const Record& record : previous) {
      if (!now.Find(record)) deleted.emplace_back(record);
    }
    for (const Record& record : current) {
      const Record* const match = before.Find(record);
      if (!match) {
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
