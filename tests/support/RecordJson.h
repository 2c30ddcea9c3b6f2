#pragma once

#include <list>

#include "json/FieldTable.h"
#include "support/Test.h"

namespace Norvik::Tests {

template <class Record>
Json JsonOf(const Record& record) {
  return Json::parse(json::RecordToJson(record).strUgly());
}

/// The records of a list or vector; an empty array without records.
template <class Records>
Json ArrayOf(const Records& records) {
  Json list = Json::array();
  for (const auto& record : records) list.push_back(JsonOf(record));
  return list;
}
template <class Record>
Json JsonOf(const std::list<Record>& records) {
  return ArrayOf(records);
}
template <class Record>
Json JsonOf(const std::vector<Record>& records) {
  return ArrayOf(records);
}

}  // namespace Norvik::Tests
