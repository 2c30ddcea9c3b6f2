#include "json/Escape.h"
#include "json/Nesting.h"
#include "json/Utf8.h"
#include "support/Test.h"

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

std::string Steps(const Bytes& text) {
  std::string steps;
  for (std::size_t at = 0; at < text.size();) {
    const json::Utf8Step step = json::Utf8StepAt(text, at);
    steps += steps.empty() ? "" : " ";
    steps += "CIS"[static_cast<int>(step.kind)] + std::to_string(step.length);
    at += step.length;
  }
  return steps;
}

TEST(Reading, IsGuardedAsItsTablesSay) {
  const Json& tables = DataOf("json/reading.json");
  ExpectRows(
      tables["steps through bytes: C a character, I irregular, S stray, each with its length"],
      Steps);
  ExpectRows(tables["whether brackets nest deeper than"], json::NestsDeeperThan);
}

}  // namespace
