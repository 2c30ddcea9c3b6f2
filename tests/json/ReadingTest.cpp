#include <gtest/gtest.h>

#include "json/Nesting.h"
#include "json/Utf8.h"
#include "support/Cases.h"

namespace {

using namespace Norvik::Tests;

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
