#include "cli/RecordedCommands.h"

// The `system` defined here replaces the C library's, and then calls it. Only this system's loader
// lets a program replace functions that its libraries call.
#ifdef __linux__

#include <dlfcn.h>

#include <stdexcept>

#include "platform/SystemChanges.h"

namespace {

std::vector<std::string>* record = nullptr;

struct ShellLines final : Norvik::Platform::RealSystemChanges {
  Norvik::Platform::ChildResult Run(const Norvik::Platform::ChildCommand& command) override {
    if (command.isShellLine) record->push_back("ExecCommand: " + command.words.back());
    return RealSystemChanges::Run(command);
  }
};

}  // namespace

extern "C" int system(const char* command) {
  using System = int(const char*);
  if (record && command) record->push_back(std::string("system: ") + command);
  auto* const real = reinterpret_cast<System*>(::dlsym(RTLD_NEXT, "system"));
  if (!real) throw std::logic_error("the library's own system() cannot be found");
  return real(command);
}

namespace Norvik::Tests {

RecordedCommands::RecordedCommands() {
  record = &texts_;
  Platform::SetSystemChanges(std::make_shared<ShellLines>());
}

RecordedCommands::~RecordedCommands() {
  Platform::SetSystemChanges(nullptr);
  record = nullptr;
}

}  // namespace Norvik::Tests

#endif
