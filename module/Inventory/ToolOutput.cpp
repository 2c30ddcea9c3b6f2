#include "module/Inventory/ToolOutput.h"

#include <boost/filesystem/operations.hpp>
#include <stdexcept>

#include "common/commands/CommandRunner.h"
#include "common/files/TextFile.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"

namespace Norvik::KOB {

using Common::CommandRunner;

wxString OutputOf(const char* command) {
  return Common::WxStringFromStdString(CommandRunner::ExecCommand(command));
}

void RunToFile(const std::string& command) {
  // Not a change of the system: it only writes a file of the collector.
  CommandRunner::ExecCommand(command);
}

std::string ReadToolFile(const char* path) {
  boost::system::error_code error;
  if (!boost::filesystem::is_regular_file(path, error)) return {};
  try {
    return Common::ReadTextFile(path, CommandRunner::MAX_OUTPUT);
  } catch (const std::runtime_error& problem) {
    NORVIK_WARNING(problem.what());
    return {};
  }
}

}  // namespace Norvik::KOB
