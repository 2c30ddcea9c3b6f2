#pragma once

#include <string>
#include <vector>

namespace Norvik::Tests {

/// As long as it lives, records each line that this process runs through a shell, in order:
/// "ExecCommand: ...". The lines are run as well. One object at a time; read the texts while no
/// command runs.
class RecordedCommands {
 public:
  RecordedCommands();
  RecordedCommands(const RecordedCommands&) = delete;
  RecordedCommands& operator=(const RecordedCommands&) = delete;
  ~RecordedCommands();

  const std::vector<std::string>& Texts() const { return texts_; }

 private:
  std::vector<std::string> texts_;
};

}  // namespace Norvik::Tests
