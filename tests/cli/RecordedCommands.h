#pragma once

#include <string>
#include <vector>

namespace Norvik::Tests {

/// Keeps the text of each command that anything in this process runs by `CommandRunner` or
/// `system`, in order, for as long as it lives: "ExecCommand: ..." or "system: ...". The commands
/// run all the same. One at a time; look at the texts when no command runs.
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
