#include "module/Inventory/ToolOutput.h"

#include <fstream>
#include <iterator>

#include "common/commands/CommandRunner.h"
#include "common/text/Text.h"

namespace Norvik::KOB {

wxString OutputOf(const char* command) {
  return Common::WxStringFromStdString(Common::CommandRunner::ExecCommand(command));
}

void RunToFile(const std::string& command) {
  // Not a change of the system: it only writes a file of the collector.
  Common::CommandRunner::ExecCommand(command);
}

std::string ReadToolFile(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace Norvik::KOB
