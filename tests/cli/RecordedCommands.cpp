#include "cli/RecordedCommands.h"

#include <memory>

#include "platform/SystemChanges.h"

namespace Norvik::Tests {

namespace {

/// Records shell lines, and runs them.
class ShellLines final : public Platform::RealSystemChanges {
 public:
  explicit ShellLines(std::vector<std::string>& record) : record_(record) {}

  Platform::ChildResult Run(const Platform::ChildCommand& command) override {
    if (command.isShellLine) record_.push_back("ExecCommand: " + command.words.back());
    return RealSystemChanges::Run(command);
  }
  int RunQueryLine(const std::string& line) override {
    record_.push_back("system: " + line);
    return RealSystemChanges::RunQueryLine(line);
  }

 private:
  std::vector<std::string>& record_;
};

}  // namespace

RecordedCommands::RecordedCommands() {
  Platform::SetSystemChanges(std::make_shared<ShellLines>(texts_));
}

RecordedCommands::~RecordedCommands() { Platform::SetSystemChanges(nullptr); }

}  // namespace Norvik::Tests
