#pragma once

#include "common/commands/Execute.h"
#include "support/Test.h"

namespace Norvik::Tests {

/// Checks documents against the schemas of docs/schema, all in one run of the validator, because
/// that starts slowly. The name of a schema is that of its file: "inventory",
/// "incremental-inventory".
class SchemaCheck {
 public:
  void Add(const std::string& schema, const std::string& name, const std::string& text) {
    boost::filesystem::create_directories(folder_ / schema);
    WriteFile(folder_ / schema / name, text);
  }

  /// Output lines of the validator, such as "inventory/NAME#/bios/date: 'x' is not of type
  /// 'integer'".
  std::set<std::string> Problems(const std::string& options = {}) const {
    const std::string prefix = folder_.Path().string() + "/";
    Common::Execute validator("'" NORVIK_PYTHON "' -I -W ignore '" NORVIK_SOURCE_DIR
                              "/tests/schema/validate.py'");
    const int exitCode = validator.Run("'" + folder_.Path().string() + "' " + options);
    std::set<std::string> problems;
    std::istringstream lines(validator.Output());
    for (std::string line; std::getline(lines, line);) {
      problems.insert(line.rfind(prefix, 0) == 0 ? line.substr(prefix.size()) : line);
    }
    EXPECT_EQ(exitCode, problems.empty() ? 0 : 1) << validator.Output();
    return problems;
  }

 private:
  TemporaryFolder folder_;
};

inline void ExpectValid(const std::string& schema, const std::string& text) {
  SchemaCheck check;
  check.Add(schema, "document", text);
  EXPECT_EQ(check.Problems(), std::set<std::string>());
}

}  // namespace Norvik::Tests
