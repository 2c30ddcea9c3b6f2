#include "common/database/Sentence.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace Norvik::Common {
namespace {

// The numbers of the values in order, with q behind those that were quoted.
std::string ParametersOf(const Sentence& sentence) {
  std::string shown;
  for (const auto& parameter : sentence.parameters) {
    shown += std::to_string(parameter.value + 1) + (parameter.asText ? "q " : " ");
  }
  return shown;
}

TEST(ParseSentence, ReplacesPlaceholdersAndNothingElse) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"select 1", "select 1", ""},
      {"values({1}, '{2}')", "values(?, ?)", "1 2q "},
      {"values(%1%, '%2%')", "values(?, ?)", "1 2q "},
      {"{2},{1},{2},'{13}'{1}3", "?,?,?,??3", "2 1 2 13q 1 "},
      // Literals that are more than a placeholder.
      {"'a {1}', '{1}''{2}', '{1}{2}'", "'a {1}', '{1}''{2}', '{1}{2}'", ""},
      {"'it''s', {1}, '', '{1}', ''", "'it''s', ?, '', ?, ''", "1 1q "},
      {"'100%', '%1%'", "'100%', ?", "1q "},
      // What only looks like a placeholder.
      {"{} {x} { 1} {1 %% %x%", "{} {x} { 1} {1 %% %x%", ""},
      {"a % 2 %1% {{1}}", "a % 2 ? {?}", "1 1 "},
      // Names and comments.
      {"\"{1}\" `{1}` [{1}] {1} [it's] '{1}'", "\"{1}\" `{1}` [{1}] ? [it's] ?", "1 1q "},
      {"-- {1} it's\n{1}", "-- {1} it's\n?", "1 "},
      {"/* '{1} */ '{1}' - / {2}", "/* '{1} */ ? - / ?", "1q 2 "},
      // An open end stays for SQLite to refuse.
      {"'{1}", "'{1}", ""},
      {"{1", "{1", ""},
      {"/* {1}", "/* {1}", ""},
  };
  for (const auto& [text, sql, parameters] : cases) {
    const Sentence sentence = ParseSentence(text);
    EXPECT_EQ(sentence.sql, sql) << text;
    EXPECT_EQ(ParametersOf(sentence), parameters) << text;
  }
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
