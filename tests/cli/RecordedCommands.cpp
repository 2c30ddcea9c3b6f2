#include "cli/RecordedCommands.h"

#include <memory>

#include "platform/SystemChanges.h"

namespace Norvik::Tests {

namespace {

struct ShellLines final : Platform::RealSystemChanges {
  explicit ShellLines(std::vector<std::string>& texts) : record(texts) {}

  Platform::ChildResult Run(const Platform::ChildCommand& command) override {
    if (command.isShellLine) record.push_back("ExecCommand: " + command.words.back());
    return RealSystemChanges::Run(command);
  }

  std::vector<std::string>& record;
};

}  // namespace

RecordedCommands::RecordedCommands() {
  Platform::SetSystemChanges(std::make_shared<ShellLines>(texts_));
}

RecordedCommands::~RecordedCommands() { Platform::SetSystemChanges(nullptr); }

}  // namespace Norvik::Tests
