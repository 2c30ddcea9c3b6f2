#include "json/JSON.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/CommaLocale.h"

namespace {

using json::JSON;

template <class T>
std::string TextOf(T value) {
  JSON json;
  json = value;
  return json.strUgly();
}

TEST(JSONTest, EachTypeRendersAsItsClass) {
  EXPECT_EQ(JSON().strUgly(), "null");
  EXPECT_EQ(TextOf("text"), "\"text\"");
  EXPECT_EQ(TextOf(std::string("a\"b")), "\"a\\\"b\"");
  EXPECT_EQ(TextOf(true), "true");
  EXPECT_EQ(TextOf(false), "false");
  EXPECT_EQ(TextOf(-7), "-7");
  EXPECT_EQ(TextOf(static_cast<unsigned char>(255)), "255");
  EXPECT_EQ(TextOf(std::size_t{12345678}), "12345678");
  EXPECT_EQ(TextOf(std::numeric_limits<long long>::min()), "-9223372036854775808");
  EXPECT_EQ(TextOf(std::numeric_limits<unsigned long long>::max()), "-1");
  EXPECT_EQ(TextOf(2.5f), "2.5");
}

TEST(JSONTest, NumbersKeepSixDigitsAndTheFullStopUnderACommaLocale) {
  const tests::CommaLocale comma;
  const std::pair<double, const char*> cases[] = {{1234567.891, "1.23457e+06"},
                                                  {0.5, "0.5"},
                                                  {-45.67891, "-45.6789"},
                                                  {12345.6, "12345.6"},
                                                  {1e-5, "1e-05"},
                                                  {100000.0, "100000"},
                                                  {0.0, "0"},
                                                  {-0.25, "-0.25"},
                                                  {std::numeric_limits<double>::infinity(), "inf"}};
  for (const auto& [number, text] : cases) EXPECT_EQ(TextOf(number), text);
  EXPECT_EQ(TextOf(1234567), "1234567");
}

TEST(JSONTest, KeysComeInByteOrderWithoutWhiteSpace) {
  JSON json;
  json["z"] = 1;
  json["a"][1] = "x y";
  json["Z"].SetType(JSON::Class::Object);
  json["\xC3\xA9"].SetType(JSON::Class::Array);
  json["z"] = 2;
  EXPECT_EQ(json.strUgly(), "{\"Z\":{},\"a\":[null,\"x y\"],\"z\":2,\"\xC3\xA9\":[]}");
}

TEST(JSONTest, AnIndentedTextLosesTwoCharactersOfIndentAtTheClosingBrace) {
  JSON json;
  json["a"]["b"] = 1;
  json["c"].append(JSON());
  json["c"].append(JSON());
  EXPECT_EQ(json.dump(1, "  ", "\n"),
            "{\n  \"a\" : {\n    \"b\" : 1\n  },\n  \"c\" : [null, null]\n}");
  EXPECT_EQ(json["a"].dump(1, "    ", "\n"), "{\n    \"b\" : 1\n  }");
  EXPECT_EQ(json["a"].dump(1, "\t", "\n"), "{\n\t\"b\" : 1\n}");
}

TEST(JSONTest, UseAsAnotherClassDiscardsWhatWasThere) {
  JSON json;
  json = "text";
  json["k"] = 1;
  EXPECT_EQ(json.strUgly(), "{\"k\":1}");
  EXPECT_TRUE(json[3].IsNull());
  EXPECT_EQ(json.strUgly(), "[null,null,null,null]");
  json = 7;
  json.append(JSON());
  EXPECT_EQ(json.strUgly(), "[null]");
  json = true;
  EXPECT_EQ(json.strUgly(), "true");
}

TEST(JSONTest, SetTypeKeepsAValueOfThatClassAndEmptiesAnyOther) {
  JSON json;
  json = 7;
  json.SetType(JSON::Class::Integral);
  EXPECT_EQ(json.strUgly(), "7");
  const std::pair<JSON::Class, const char*> empties[] = {
      {JSON::Class::Floating, "0"}, {JSON::Class::String, "\"\""}, {JSON::Class::Boolean, "false"},
      {JSON::Class::Object, "{}"},  {JSON::Class::Array, "[]"},    {JSON::Class::Integral, "0"},
      {JSON::Class::Null, "null"}};
  for (const auto& [type, text] : empties) {
    json.SetType(type);
    EXPECT_EQ(json.strUgly(), text);
  }
}

class JSONAssignmentTest : public testing::Test {
 protected:
  static JSON Sample() {
    JSON json;
    json["k"]["inner"] = "some text that is too long for the small string";
    json["n"] = 1;
    return json;
  }
  JSON json_ = Sample();
  const std::string text_ = json_.strUgly();
  const std::string child_ = json_["k"].strUgly();
};

TEST_F(JSONAssignmentTest, CopiesAreDeep) {
  JSON copy(json_);
  JSON assigned;
  assigned = copy;
  copy["k"]["inner"] = 2;
  EXPECT_EQ(json_.strUgly(), text_);
  EXPECT_EQ(assigned.strUgly(), text_);
}

TEST_F(JSONAssignmentTest, MovesLeaveNull) {
  JSON moved(std::move(json_));
  EXPECT_TRUE(json_.IsNull());
  json_ = std::move(moved);
  EXPECT_TRUE(moved.IsNull());
  EXPECT_EQ(json_.strUgly(), text_);
}

TEST_F(JSONAssignmentTest, AValueTakesItself) {
  JSON& same = json_;
  json_ = same;
  EXPECT_EQ(json_.strUgly(), text_);
  json_ = std::move(same);
  EXPECT_EQ(json_.strUgly(), text_);
}

TEST_F(JSONAssignmentTest, AValueTakesAPartOfItself) {
  JSON copied(json_);
  copied = copied["k"];
  EXPECT_EQ(copied.strUgly(), child_);
  json_ = std::move(json_["k"]);
  EXPECT_EQ(json_.strUgly(), child_);
}

TEST_F(JSONAssignmentTest, APartTakesACopyOfTheWhole) {
  json_["k"] = json_;
  EXPECT_EQ(json_.strUgly(), "{\"k\":" + text_ + ",\"n\":1}");
  JSON array;
  array.append(array);
  array.append(array);
  EXPECT_EQ(array.strUgly(), "[null,[null]]");
}

}  // namespace
