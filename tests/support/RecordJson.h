#pragma once

#include "json/FieldTable.h"
#include "support/Test.h"

namespace Norvik::Tests {

template <class Record>
Json JsonOf(const Record& record) {
  return Json::parse(json::RecordToJson(record).strUgly());
}

/// The records of a list or vector; an empty array without records.
template <template <class...> class List, class Record, class Allocator>
Json JsonOf(const List<Record, Allocator>& records) {
  Json list = Json::array();
  for (const auto& record : records) list.push_back(JsonOf(record));
  return list;
}

}  // namespace Norvik::Tests
