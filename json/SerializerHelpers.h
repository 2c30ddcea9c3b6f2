#pragma once

#include <boost/optional.hpp>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "json/ISerializerJson.h"

namespace json {

/// Array of what `convert` gives for each element, nulls left out; null if nothing is left.
template <class Container, class Convert>
JSON ArrayOf(const Container& elements, Convert convert) {
  JSON array;
  for (const auto& element : elements) {
    JSON value = convert(element);
    if (!value.IsNull()) array.append(std::move(value));
  }
  return array;
}

/// Array of records, each through its interface.
template <class Container>
JSON ArrayOfRecords(const Container& records) {
  return ArrayOf(records,
                 [](const Norvik::Common::ISerializerJson& record) -> JSON { return record; });
}

}  // namespace json

/// The records in order; null, not an empty array, if there are none.
template <class T>
json::JSON StringListToJsonChild(const std::list<T>& records) {
  return json::ArrayOfRecords(records);
}

/// The records in order; null, not an empty array, if there are none.
template <class T>
json::JSON VectorToJsonChild(const std::vector<T>& records) {
  return json::ArrayOfRecords(records);
}

/// Leaves `target` as it is if the list is empty; otherwise the records stand under the key.
template <class T>
void AddListIfNotEmptyList(json::JSON& target, const std::string& key,
                           const std::list<T>& records) {
  if (!records.empty()) target[key] = StringListToJsonChild(records);
}

/// Leaves `target` as it is if the vector is empty; otherwise the records stand under the key.
template <class T>
void AddListIfNotEmptyVector(json::JSON& target, const std::string& key,
                             const std::vector<T>& records) {
  if (!records.empty()) target[key] = VectorToJsonChild(records);
}

/// Leaves `target` as it is if there is no record; a record stands under the key even if all its
/// fields are empty.
template <class T>
void AddIfNotEmpty(json::JSON& target, const std::string& key, const boost::optional<T>& record) {
  if (!record) return;
  const Norvik::Common::ISerializerJson& serializer = *record;
  target[key] = static_cast<json::JSON>(serializer);
}

/// A list or vector with one record per child of a tree node; none for a node without children,
/// such as a stored null.
template <class Container, class Tree>
Container LoadFromTree(const Tree& node) {
  Container records;
  for (const auto& child : node) records.emplace_back(child.second);
  return records;
}
