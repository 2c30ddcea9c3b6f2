#include "module/Inventory/ToolFile.h"

#include <stdlib.h>

#include <fstream>
#include <iterator>

#include "platform/Rehearsal.h"

namespace Norvik::KOB {

void RunToFile(const std::string& command) {
  // It changes nothing but a file of the collector's own.
  Platform::NoteStep({Platform::RehearsedStep::ASKED, command, "", ""});
  [[maybe_unused]] const int status = ::system(command.c_str());
}

std::string ReadToolFile(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace Norvik::KOB
