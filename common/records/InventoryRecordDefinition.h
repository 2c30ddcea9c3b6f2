#pragma once

#include <boost/property_tree/ptree.hpp>

#include "common/records/InventoryRecord.h"

// The members of InventoryRecord.h, for the sources that instantiate them: the Records.cpp of each
// folder of records.

namespace Norvik::Common {

template <class T>
WrittenRecord<T>::operator json::JSON() const {
  return json::FieldsToJson(static_cast<const T&>(*this));
}

template <class T>
void WrittenRecord<T>::Read(const ptree& node) {
  json::ReadFields(node, static_cast<T&>(*this));
}

template <class T>
bool InventoryRecord<T>::operator==(const T& other) const {
  return json::FieldsEqual(static_cast<const T&>(*this), other);
}

}  // namespace Norvik::Common
