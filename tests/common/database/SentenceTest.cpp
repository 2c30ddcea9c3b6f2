#include "common/database/Sentence.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/Cases.h"

namespace Norvik::Common {
namespace {

std::vector<std::string> Parsed(const std::string& text) {
  const Sentence sentence = ParseSentence(text);
  std::string shown;
  for (const auto& parameter : sentence.parameters) {
    shown += std::to_string(parameter.value + 1) + (parameter.asText ? "q " : " ");
  }
  return {sentence.sql, shown};
}

TEST(ParseSentence, ReplacesPlaceholdersAndNothingElse) {
  const Tests::Json tables = Tests::DataOf("common/database/sentences.json");
  Tests::ExpectRows(tables.front(), Parsed);
}

TEST(ParseSentence, TellsHowManyValuesAreNeededCountedFromOne) {
  EXPECT_EQ(ParseSentence("select 1").valuesNeeded, 0U);
  EXPECT_EQ(ParseSentence("{2} '{7}' {1}").valuesNeeded, 7U);
  EXPECT_GT(ParseSentence("{99999999999999999999999}").valuesNeeded, 32766U);
  for (const char* text : {"{0}", "'{0}'", "%0%", "'%00%'"}) {
    EXPECT_THROW(ParseSentence(text), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace Norvik::Common
