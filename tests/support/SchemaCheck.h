#pragma once

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Tests {

/// Documents to hold against the schemas of docs/schema, all in one run of the validator, since
/// that starts slowly. A schema is named as its file: "inventory", "incremental-inventory".
class SchemaCheck {
 public:
  void Add(const std::string& schema, const std::string& name, const std::string& text) {
    boost::filesystem::create_directories(folder_ / schema);
    WriteFile(folder_ / schema / name, text);
  }

  /// Lines of the validator, as in "inventory/NAME#/bios/date: 'x' is not of type 'integer'".
  std::set<std::string> Problems(std::vector<std::string> options = {}) const {
    std::string output, errors;
    Platform::ChildCommand command;
    command.words = {NORVIK_PYTHON, "-I", NORVIK_SOURCE_DIR "/tests/schema/validate.py",
                     folder_.Path().string()};
    command.words.insert(command.words.end(), options.begin(), options.end());
    command.onOutput = [&](std::string_view piece) { output += piece; };
    command.onErrors = [&](std::string_view piece) { errors += piece; };
    const auto result = Platform::RunChild(command);
    std::set<std::string> problems;
    const std::string prefix = folder_.Path().string() + "/";
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
      problems.insert(line.compare(0, prefix.size(), prefix) == 0 ? line.substr(prefix.size())
                                                                  : line);
    }
    EXPECT_EQ(result.exitCode, problems.empty() ? 0 : 1) << result.problem << errors;
    return problems;
  }

 private:
  TemporaryFolder folder_;
};

/// Expects a document that its schema allows.
inline void ExpectValid(const std::string& schema, const std::string& text) {
  SchemaCheck check;
  check.Add(schema, "document", text);
  EXPECT_EQ(check.Problems(), std::set<std::string>());
}

}  // namespace Norvik::Tests
