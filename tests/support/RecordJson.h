#pragma once

#include "json/FieldTable.h"
#include "support/Cases.h"

namespace Norvik::Tests {

/// What a document tells of a record, or of each in a list.
template <class Value>
Json JsonOf(const Value& value) {
  if constexpr (json::HasFields<Value>::value) {
    return Json::parse(json::RecordToJson(value).strUgly());
  } else {
    Json list = Json::array();
    for (const auto& record : value) list.push_back(JsonOf(record));
    return list;
  }
}

}  // namespace Norvik::Tests
