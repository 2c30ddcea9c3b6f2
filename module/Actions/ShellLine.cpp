#include "module/Actions/ShellLine.h"

#include <boost/format.hpp>

#include "common/log/Logger.h"

namespace Norvik::KOB {

namespace {

/// Characters with a meaning for the shell: outside quotes, and between double quotes.
constexpr char SHELL_CHARACTERS[] = " \t\n\r|&;<>()$`\\\"'*?[]#~{}";
constexpr char QUOTED_SHELL_CHARACTERS[] = "$`\\\"";

}  // namespace

std::string ShellLine(const char* format, const std::string& name) {
  std::string line = (boost::format(format) % name).str();
  const bool quoted = std::string(format).find("\"%1%\"") != std::string::npos;
  // Deliberately not escaped: the server's requests may rely on expansion by the shell.
  if (name.find_first_of(quoted ? QUOTED_SHELL_CHARACTERS : SHELL_CHARACTERS) !=
      std::string::npos) {
    NORVIK_WARNING(boost::format("The name in this line holds characters of the shell: %1%") %
                   line);
  }
  return line;
}

}  // namespace Norvik::KOB
