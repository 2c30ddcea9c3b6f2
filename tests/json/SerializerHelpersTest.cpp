#include "json/SerializerHelpers.h"

#include <gtest/gtest.h>

namespace {

using json::JSON;

/// Converts to its number; a negative one to null.
struct Entry final : Norvik::Common::ISerializerJson {
  explicit Entry(int value) : number(value) {}
  operator JSON() const override {
    JSON object;
    if (number >= 0) object["n"] = number;
    return object;
  }
  int number;
};
using List = std::list<Entry>;
using Vector = std::vector<Entry>;

TEST(SerializerHelpersTest, ContainersBecomeArraysWithoutHolesOrNull) {
  JSON json;
  json["list"] = StringListToJsonChild(List{Entry(3), Entry(-1), Entry(4)});
  json["none"] = StringListToJsonChild(List());
  json["nulls"] = VectorToJsonChild(Vector{Entry(-1)});
  json["vector"] = VectorToJsonChild(Vector{Entry(1), Entry(-1), Entry(2)});
  EXPECT_EQ(json.strUgly(),
            R"({"list":[{"n":3},{"n":4}],"none":null,"nulls":null,"vector":[{"n":1},{"n":2}]})");
}

}  // namespace
