#include "cli/view/SystemOpener.h"

#include <boost/filesystem/operations.hpp>
#include <stdexcept>
#include <string>

#include "platform/ChildProcess.h"

namespace Norvik::Cli {

void OpenWithSystem(const boost::filesystem::path& file) {
  Platform::ChildCommand command;
  // An absolute path, which is never taken for an option.
  command.words = {SYSTEM_OPENER, boost::filesystem::absolute(file).string()};
  const Platform::ChildResult result = Platform::RunChild(command);
  const std::string failure = "cannot open " + file.string() + " with " + SYSTEM_OPENER + ": ";
  if (!result.started) throw std::runtime_error(failure + result.problem);
  if (result.onlyNoted) throw std::runtime_error(failure + "only --really runs programs here");
  if (result.exitCode != 0) {
    throw std::runtime_error(failure + "it ended with " + std::to_string(result.exitCode));
  }
}

}  // namespace Norvik::Cli
