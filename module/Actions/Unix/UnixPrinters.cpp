#include "module/Actions/Unix/UnixPrinters.h"

#include <boost/format.hpp>
#include <sstream>

#include "common/commands/CommandRunner.h"
#include "common/log/Logger.h"
#include "module/Actions/ShellLine.h"

namespace Norvik::KOB {

namespace {

std::string ListQueues() {
  return Common::CommandRunner::ExecCommand("lpstat -v | awk '{print $3}'");
}

}  // namespace

bool UnixPrinters::RemovePrinter(std::string& name) {
  NORVIK_SCOPE();
  if (!CheckPrinter(ListQueues(), name)) {
    NORVIK_ERROR(boost::format("Try to remove printer with name %1%, but it does not exist.") %
                 name);
    return false;
  }
  NORVIK_INFORMATION(boost::format("Removing printer %1%.") % name);
  const auto removal = Common::CommandRunner::ExecChange(ShellLine("lpadmin -x %1%", name));
  const bool isLeft = CheckPrinter(ListQueues(), name);
  // In a rehearsal the removal is only noted, so it counts as done.
  if (isLeft && !removal.onlyNoted) {
    NORVIK_ERROR(boost::format("The %1% printer could not be removed.") % name);
    return false;
  }
  NORVIK_INFORMATION("Printer removed successfully, starting KOB incremental inventory");
  return true;
}

bool UnixPrinters::CheckPrinter(const std::string& list, const std::string& name) {
  std::istringstream lines(list);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty()) continue;
    if (line.back() == ':') line.pop_back();
    if (line == name) return true;
  }
  return false;
}

}  // namespace Norvik::KOB
