#include "json/JSON.h"

#include "json/SerializerHelpers.h"
#include "support/Test.h"

namespace {

using json::JSON;

const std::string LONG = "a text that is too long for the small string";
const std::string PART = "[\"" + LONG + "\"]";
const std::string WHOLE = "{\"k\":" + PART + "}";

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
  EXPECT_EQ(TextOf(-7), "-7");
  EXPECT_EQ(TextOf(static_cast<unsigned char>(255)), "255");
  EXPECT_EQ(TextOf(std::numeric_limits<long long>::min()), "-9223372036854775808");
  EXPECT_EQ(TextOf(std::numeric_limits<unsigned long long>::max()), "-1");
  EXPECT_EQ(TextOf(2.5f), "2.5");
}

TEST(JSONTest, NumbersKeepSixDigitsAndTheFullStopUnderACommaLocale) {
  const tests::CommaLocale comma;
  const std::pair<double, const char*> cases[] = {{1234567.891, "1.23457e+06"},
                                                  {-45.67891, "-45.6789"},
                                                  {1e-5, "1e-05"},
                                                  {100000.0, "100000"},
                                                  {0.0, "0"},
                                                  {std::numeric_limits<double>::infinity(), "inf"}};
  for (const auto& [number, text] : cases) EXPECT_EQ(TextOf(number), text);
  EXPECT_EQ(TextOf(1234567), "1234567");
}

TEST(JSONTest, SetTypeKeepsAValueOfThatClassAndEmptiesAnyOther) {
  JSON json;
  json = 7;
  const std::pair<JSON::Class, const char*> texts[] = {
      {JSON::Class::Integral, "7"},    {JSON::Class::Floating, "0"}, {JSON::Class::String, "\"\""},
      {JSON::Class::Boolean, "false"}, {JSON::Class::Object, "{}"},  {JSON::Class::Array, "[]"},
      {JSON::Class::Integral, "0"},    {JSON::Class::Null, "null"}};
  for (const auto& [type, text] : texts) {
    json.SetType(type);
    EXPECT_EQ(json.strUgly(), text);
  }
}

TEST(JSONTest, AnIndentedTextLosesTwoCharactersOfIndentAtTheClosingBrace) {
  JSON json;
  json["a"]["b"] = 1;
  json["c"][1];
  EXPECT_EQ(json.dump(1, "  ", "\n"),
            "{\n  \"a\" : {\n    \"b\" : 1\n  },\n  \"c\" : [null, null]\n}");
  EXPECT_EQ(json["a"].dump(1, "    ", "\n"), "{\n    \"b\" : 1\n  }");
  EXPECT_EQ(json["a"].dump(1, "\t", "\n"), "{\n\t\"b\" : 1\n}");
  EXPECT_EQ(json["c"].dump(0, "  ", "\n"), "[null,null]");
}

TEST(JSONTest, AValueIsWhatItWasLastUsedAs) {
  const struct {
    const char* name;
    void (*use)(JSON& json);
    std::string text;
  } cases[] = {
      {"keys in byte order",
       [](JSON& json) {
         json["z"] = 1;
         json["a"][1] = "x y";
         json["\xC3\xA9"].SetType(JSON::Class::Array);
         json["Z"].SetType(JSON::Class::Object);
         json["z"] = 2;
       },
       "{\"Z\":{},\"a\":[null,\"x y\"],\"k\":" + PART + ",\"z\":2,\"\xC3\xA9\":[]}"},
      {"an array", [](JSON& json) { json[1] = 7; }, "[null,7]"},
      {"a number", [](JSON& json) { json = 7; }, "7"},
      {"something added", [](JSON& json) { (json = 7).append(JSON()); }, "[null]"},
      {"a deep copy",
       [](JSON& json) {
         JSON copy(json), assigned;
         assigned = copy;
         copy["k"] = json["k"] = 2;
         json = assigned;
       },
       WHOLE},
      {"moved away", [](JSON& json) { JSON moved(std::move(json)); }, "null"},
      {"moved back",
       [](JSON& json) {
         JSON moved(std::move(json));
         json = std::move(moved);
         EXPECT_TRUE(moved.IsNull());
       },
       WHOLE},
      {"a copy of itself", [](JSON& json) { json = static_cast<const JSON&>(json); }, WHOLE},
      {"itself, moved",
       [](JSON& json) {
         JSON& itself = json;
         json = std::move(itself);
       },
       WHOLE},
      {"a copy of its part", [](JSON& json) { json = json["k"]; }, PART},
      {"its part, moved", [](JSON& json) { json = std::move(json["k"]); }, PART},
      {"the whole in a part", [](JSON& json) { json["k"][1] = json; },
       "{\"k\":[\"" + LONG + "\",{\"k\":[\"" + LONG + "\",null]}]}"},
      {"the whole at the end", [](JSON& json) { (json = json["k"]).append(json); },
       "[\"" + LONG + "\"," + PART + "]"}};
  for (const auto& row : cases) {
    JSON json;
    json["k"][0] = LONG;
    row.use(json);
    EXPECT_EQ(json.strUgly(), row.text) << row.name;
  }
}

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
