#pragma once

#include <boost/optional.hpp>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "json/ISerializerJson.h"

namespace json {

/// Array of `convert(element)` for each element in order, without the nulls. Null, not an empty
/// array, if no value is left.
template <class Container, class Convert>
JSON ArrayOf(const Container& elements, Convert convert) {
  JSON array;
  for (const auto& element : elements) {
    JSON value = convert(element);
    if (!value.IsNull()) array.append(std::move(value));
  }
  return array;
}

/// Array of records, each converted through its interface.
template <class Container>
JSON ArrayOfRecords(const Container& records) {
  return ArrayOf(records,
                 [](const Norvik::Common::ISerializerJson& record) -> JSON { return record; });
}

}  // namespace json

/// The records in order; null, not an empty array, without records.
template <class T>
json::JSON StringListToJsonChild(const std::list<T>& records) {
  return json::ArrayOfRecords(records);
}

/// The records in order; null, not an empty array, without records.
template <class T>
json::JSON VectorToJsonChild(const std::vector<T>& records) {
  return json::ArrayOfRecords(records);
}

/// Sets `target[key]` to the array of the records. An empty list leaves `target` unchanged: a null
/// one stays null.
template <class T>
void AddListIfNotEmptyList(json::JSON& target, const std::string& key,
                           const std::list<T>& records) {
  if (!records.empty()) target[key] = StringListToJsonChild(records);
}

/// Sets `target[key]` to the array of the records. An empty vector leaves `target` unchanged: a
/// null one stays null.
template <class T>
void AddListIfNotEmptyVector(json::JSON& target, const std::string& key,
                             const std::vector<T>& records) {
  if (!records.empty()) target[key] = VectorToJsonChild(records);
}

/// Sets `target[key]` to the record, even if all its fields are empty. An empty optional leaves
/// `target` unchanged.
template <class T>
void AddIfNotEmpty(json::JSON& target, const std::string& key, const boost::optional<T>& record) {
  if (!record) return;
  const Norvik::Common::ISerializerJson& serializer = *record;
  target[key] = static_cast<json::JSON>(serializer);
}

/// A list or vector with one record for each child of a tree node, in order. A node without
/// children, such as a stored null, gives an empty one. Throws what the record's constructor
/// throws.
template <class Container, class Tree>
Container LoadFromTree(const Tree& node) {
  Container records;
  for (const auto& child : node) records.emplace_back(child.second);
  return records;
}
