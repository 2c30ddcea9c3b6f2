#include "common/database/Sentence.h"

#include <gtest/gtest.h>

#include "support/Cases.h"

namespace Norvik::Common {
namespace {

std::vector<std::string> PartsOf(const std::string& text) {
  const Sentence sentence = ParseSentence(text);
  std::string shown;
  for (const auto& parameter : sentence.parameters) {
    shown += std::to_string(parameter.value + 1) + (parameter.asText ? "q " : " ");
  }
  return {sentence.sql, shown};
}

TEST(ParseSentence, ReplacesPlaceholdersAndNothingElse) {
  const Tests::Json tables = Tests::DataOf("common/database/sentences.json");
  Tests::ExpectRows(tables.front(), PartsOf);
}

}  // namespace
}  // namespace Norvik::Common
