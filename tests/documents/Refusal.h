#pragma once

#include <gmock/gmock.h>

#include <string>

#include "documents/ApplyIncrement.h"
#include "documents/DocumentError.h"
#include "support/Cases.h"

namespace Norvik::Tests {

/// A text of a row: as it stands, or a document with the values of the row at their places.
inline std::string Spoiled(Json document, const Json& values) {
  if (values.is_string()) return values;
  for (const auto& [place, value] : values.items()) document[Json::json_pointer(place)] = value;
  return document.dump();
}

/// Expects that documents are refused as the rows of a data file tell: what is put into the full
/// one and into the changes, which are called so, and what the reason holds.
inline void ExpectRefusals(const std::string& file, const Json& full, const Json& changes) {
  for (const Json& row : DataOf(file)) {
    const std::string reason = MessageOf<Documents::DocumentError>([&] {
      Documents::ApplyIncrement({"full", Spoiled(full, row[0])},
                                {"changes", Spoiled(changes, row[1])});
    });
    EXPECT_THAT(reason, testing::HasSubstr(row[2].get<std::string>())) << row;
  }
}

}  // namespace Norvik::Tests
