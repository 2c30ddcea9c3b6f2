#pragma once

#include <boost/algorithm/string/erase.hpp>

#include "module/Entities/InventorySections.h"
#include "support/RecordFiller.h"

namespace tests {

/// An inventory with a distinct value in each field of each section.
inline Norvik::KOB::InventoryKOBInfo FilledInventory() {
  Norvik::KOB::InventoryKOBInfo inventory;
  Filler filler;
  Norvik::KOB::ForEachSection([&](const auto& section) { filler.Fill(section.In(inventory)); });
  return inventory;
}

template <class T>
T Numbered(int number) {
  T record;
  Filler(number * 100).FillRecord(record);
  return record;
}

/// A copy of the record with a change in the last field that is not part of its key.
template <class T>
T ChangedOutsideKey(const T& record) {
  T result = record;
  const auto change = [&](const auto& field) {
    T changed = record;
    Filler(9000).FillField(field, changed);
    if (changed.HasSameKey(record)) result = changed;
  };
  std::apply([&](const auto&... field) { (change(field), ...); }, T::Fields());
  return result;
}

/// A stored document, which has one line per section, joined into one line as the writer writes it.
inline std::string GoldenText(const std::string& path) {
  return boost::erase_all_copy(Norvik::Tests::ContentOf(path), "\n");
}

}  // namespace tests
