#include "json/Escape.h"

#include <gtest/gtest.h>

#include "support/Cases.h"

namespace {

using namespace Norvik::Tests;

TEST(EscapeTest, EachByteHasItsForm) {
  ExpectRows(
      DataOf("json/escaped.json"),
      +[](const Bytes& text) { return Bytes(json::json_escape(text)); });
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

}  // namespace
