#include "cli/RecordedCommands.h"

// The functions here stand before the libraries' own of the same names, which they then call. Only
// this system's loader has a program's functions replace those that its libraries call.
#ifdef __linux__

#include <dlfcn.h>

#include <stdexcept>

#include "common/commands/CommandRunner.h"

namespace {

std::vector<std::string>* record = nullptr;

void Note(const std::string& text) {
  if (record) record->push_back(text);
}

template <class Function>
Function* Replaced(const char* name) {
  auto* const function = reinterpret_cast<Function*>(name ? ::dlsym(RTLD_NEXT, name) : nullptr);
  if (!function) throw std::logic_error("a function that is recorded cannot be found");
  return function;
}

}  // namespace

extern "C" int system(const char* command) {
  Note(std::string("system: ") + (command ? command : ""));
  return Replaced<int(const char*)>("system")(command);
}

std::string Norvik::Common::CommandRunner::ExecCommand(const std::string& command) {
  Note("ExecCommand: " + command);
  Dl_info self{};
  ::dladdr(reinterpret_cast<void*>(&CommandRunner::ExecCommand), &self);
  return Replaced<std::string(const std::string&)>(self.dli_sname)(command);
}

namespace Norvik::Tests {

RecordedCommands::RecordedCommands() { record = &texts_; }

RecordedCommands::~RecordedCommands() { record = nullptr; }

}  // namespace Norvik::Tests

#endif
