#include <boost/format.hpp>

#include "common/log/Logger.h"
#include "host/run/UserNotice.h"
#include "platform/ChildProcess.h"

namespace Norvik::Host {

void ShowNotice(const std::string& text) {
  Platform::ChildCommand command;
  // The text is passed as an argument, so that it cannot become part of the script.
  command.words = {"/usr/bin/osascript",
                   "-e",
                   "on run texts",
                   "-e",
                   "display notification (item 1 of texts) with title \"Norvik\"",
                   "-e",
                   "end run",
                   "--",
                   text};
  command.onOutput = [](std::string_view) {};
  const auto result = Platform::RunChild(command);
  if (result.started && result.exitCode == 0) return;
  NORVIK_WARNING(
      boost::format("The notification was not shown: %1%") %
      (result.started ? "exit code " + std::to_string(result.exitCode) : result.problem));
}

}  // namespace Norvik::Host
