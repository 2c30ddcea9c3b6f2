#include "json/SerializerHelpers.h"

#include <gtest/gtest.h>

#include <boost/property_tree/json_parser.hpp>
#include <sstream>

namespace {

using json::JSON;

/// Converts to its number; a negative one to null.
struct Entry final : Norvik::Common::ISerializerJson {
  explicit Entry(int value) : number(value) {}
  explicit Entry(const boost::property_tree::ptree& node) : number(node.get("n", 0)) {}
  operator JSON() const override {
    JSON object;
    if (number >= 0) object["n"] = number;
    return object;
  }
  int number;
};

std::list<Entry> List(std::initializer_list<int> numbers) {
  return {numbers.begin(), numbers.end()};
}

template <class Container>
Container Load(const std::string& text) {
  std::istringstream stream(text);
  boost::property_tree::ptree tree;
  read_json(stream, tree);
  return LoadFromTree<Container>(tree.get_child("section"));
}

TEST(SerializerHelpersTest, ContainersBecomeArraysWithoutHoles) {
  const std::vector<Entry> vector{Entry(1), Entry(-1), Entry(2)};
  EXPECT_EQ(StringListToJsonChild(List({3, -1, 4})).strUgly(), "[{\"n\":3},{\"n\":4}]");
  EXPECT_EQ(VectorToJsonChild(vector).strUgly(), "[{\"n\":1},{\"n\":2}]");
}

TEST(SerializerHelpersTest, NothingToShowIsNullAndNeverAnEmptyArray) {
  JSON document;
  document["cdrom"] = StringListToJsonChild(List({}));
  document["nulls"] = StringListToJsonChild(List({-1}));
  document["vector"] = VectorToJsonChild(std::vector<Entry>());
  EXPECT_EQ(document.strUgly(), "{\"cdrom\":null,\"nulls\":null,\"vector\":null}");
}

TEST(SerializerHelpersTest, ConditionalMembersLeaveAnUntouchedTargetNull) {
  JSON target;
  AddListIfNotEmptyList(target, "list", List({}));
  AddListIfNotEmptyVector(target, "vector", std::vector<Entry>());
  AddIfNotEmpty(target, "record", boost::optional<Entry>());
  EXPECT_TRUE(target.IsNull());
}

TEST(SerializerHelpersTest, ConditionalMembersGoByTheContainerNotByItsContent) {
  JSON target;
  AddListIfNotEmptyList(target, "list", List({-1}));
  AddListIfNotEmptyVector(target, "vector", std::vector<Entry>{Entry(5)});
  AddIfNotEmpty(target, "record", boost::make_optional(Entry(0)));
  EXPECT_EQ(target.strUgly(), "{\"list\":null,\"record\":{\"n\":0},\"vector\":[{\"n\":5}]}");
}

TEST(SerializerHelpersTest, StoredSectionsLoadInOrderAndNullLoadsEmpty) {
  const auto loaded = Load<std::vector<Entry>>("{\"section\":[{\"n\":2},{},{\"n\":1}]}");
  ASSERT_EQ(loaded.size(), 3u);
  EXPECT_EQ(loaded[0].number, 2);
  EXPECT_EQ(loaded[1].number, 0);
  EXPECT_EQ(loaded[2].number, 1);
  EXPECT_TRUE(Load<std::list<Entry>>("{\"section\":null}").empty());
}

}  // namespace
