#include "common/database/Sentence.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace Norvik::Common {
namespace {

// Parameters as one text: the number of the value, with q behind it if it was quoted.
std::string Shown(const Sentence& sentence) {
  std::string shown;
  for (const auto& parameter : sentence.parameters) {
    shown += (shown.empty() ? "" : " ") + std::to_string(parameter.value + 1) +
             (parameter.asText ? "q" : "");
  }
  return shown;
}

TEST(ParseSentence, ReplacesPlaceholdersAndNothingElse) {
  struct Case {
    const char* text;
    const char* sql;
    const char* parameters;
  };
  const Case cases[] = {
      {"select 1", "select 1", ""},
      {"values({1}, '{2}')", "values(?, ?)", "1 2q"},
      {"values(%1%, '%2%')", "values(?, ?)", "1 2q"},
      {"{2},{1},{2}", "?,?,?", "2 1 2"},
      {"'{13}'{1}3", "??3", "13q 1"},
      // Literals that are more than a placeholder.
      {"'a {1}'", "'a {1}'", ""},
      {"'{1}''{2}'", "'{1}''{2}'", ""},
      {"'it''s', {1}", "'it''s', ?", "1"},
      {"'', '{1}', ''", "'', ?, ''", "1q"},
      {"'{1}{2}'", "'{1}{2}'", ""},
      {"'100%', '%1%'", "'100%', ?", "1q"},
      // What only looks like a placeholder.
      {"{} {x} { 1} {1 %% %x%", "{} {x} { 1} {1 %% %x%", ""},
      {"a % 2 %1%", "a % 2 ?", "1"},
      {"{{1}}", "{?}", "1"},
      // Names and comments.
      {"\"{1}\" `{1}` [{1}] {1}", "\"{1}\" `{1}` [{1}] ?", "1"},
      {"-- {1} it's\n{1}", "-- {1} it's\n?", "1"},
      {"/* '{1} */ '{1}' - / {2}", "/* '{1} */ ? - / ?", "1q 2"},
      {"[it's] '{1}'", "[it's] ?", "1q"},
      // An open end stays for SQLite to refuse.
      {"'{1}", "'{1}", ""},
      {"{1", "{1", ""},
      {"/* {1}", "/* {1}", ""},
  };
  for (const auto& [text, sql, parameters] : cases) {
    const Sentence sentence = ParseSentence(text);
    EXPECT_EQ(sentence.sql, sql) << text;
    EXPECT_EQ(Shown(sentence), parameters) << text;
  }
}

TEST(ParseSentence, TellsHowManyValuesAreNeeded) {
  EXPECT_EQ(ParseSentence("select 1").valuesNeeded, 0U);
  EXPECT_EQ(ParseSentence("{2} '{7}' {1}").valuesNeeded, 7U);
  EXPECT_GT(ParseSentence("{99999999999999999999999}").valuesNeeded, 32766U);
}

TEST(ParseSentence, RefusesPlaceholderZero) {
  for (const char* text : {"{0}", "'{0}'", "%0%", "'%00%'"}) {
    EXPECT_THROW(ParseSentence(text), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace Norvik::Common
