#include "cli/commands/TerminalWidth.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

namespace Norvik::Cli {

std::size_t TerminalWidth() {
  const char* const columns = std::getenv("COLUMNS");
  const long given = columns ? std::strtol(columns, nullptr, 10) : 0;
  if (given > 0) return static_cast<std::size_t>(given);
  winsize size{};
  if (::isatty(STDOUT_FILENO) == 0) return 0;
  return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace Norvik::Cli
