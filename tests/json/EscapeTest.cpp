#include "json/Escape.h"

#include <gtest/gtest.h>

namespace {

struct Case {
  std::string name, text, escaped;
};

TEST(EscapeTest, EachByteHasItsForm) {
  const Case cases[] = {
      {"empty", "", ""},
      {"plain", "Plain ASCII text, with / and \x7F", "Plain ASCII text, with / and \x7F"},
      {"named controls", "\b\t\n\f\r", "\\b\\t\\n\\f\\r"},
      {"quote and backslash", "a\"b\\c", "a\\\"b\\\\c"},
      {"other controls", std::string("\0\x01\x1F", 3), "\\u0000\\u0001\\u001f"},
      {"two bytes", "\xC3\xA9", "\xC3\xA9"},
      {"three bytes", "\xE2\x82\xAC!", "\xE2\x82\xAC!"},
      {"four bytes", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
      {"lone lead in the middle", "a\xE9z", "a\\u00e9z"},
      {"lone lead before ASCII",
       "\xC3"
       "A",
       "\\u00c3A"},
      {"cut at the end", "a\xC3", "a\\u00c3"},
      {"three bytes cut", "\xE2\x82", "\\u00e2\\u0082"},
      {"four bytes cut", "\xF0\x9F\x98", "\\u00f0\\u009f\\u0098"},
      {"wrong last byte", "\xF0\x9F\x98\x41", "\\u00f0\\u009f\\u0098A"},
      {"valid inside a broken one", "\xE2\xC3\xA9", "\\u00e2\xC3\xA9"},
      {"lone continuation", "\x80\xBF", "\\u0080\\u00bf"},
      {"never a lead", "\xF8\x88\x80\x80\x80\xFF", "\\u00f8\\u0088\\u0080\\u0080\\u0080\\u00ff"},
      {"overlong passes", "\xC0\xAF", "\xC0\xAF"},
      {"surrogate passes", "\xED\xA0\x80", "\xED\xA0\x80"},
  };
  for (const Case& row : cases) EXPECT_EQ(json::json_escape(row.text), row.escaped) << row.name;
}

TEST(EscapeTest, AByteIsJudgedAlikeAtEveryPlaceOfALongText) {
  const std::string plain = "abcdefgh ijklmnop~!";
  for (int number = 0; number < 256; ++number) {
    const std::string byte(1, static_cast<char>(number));
    for (std::size_t place = 0; place <= plain.size(); ++place) {
      const std::string before = plain.substr(0, place);
      const std::string after = plain.substr(place);
      EXPECT_EQ(json::json_escape(before + byte + after), before + json::json_escape(byte) + after)
          << "byte " << number << " at " << place;
    }
  }
}

TEST(EscapeTest, TheAppendingFormAddsToWhatIsThere) {
  std::string out = "before ";
  json::AppendEscaped(out, "x\ny");
  json::AppendEscaped(out, "z");
  EXPECT_EQ(out, "before x\\nyz");
}

}  // namespace
