#include "common/commands/CommandRunner.h"

#include <boost/format.hpp>
#include <cstddef>
#include <string_view>

#include "common/log/Logger.h"
#include "platform/ChildProcess.h"

namespace Norvik::Common {

namespace {

/// Logs what a tool prints on its error channel, line by line.
class ErrorLog {
 public:
  void Add(std::string_view piece) {
    for (const char c : piece) {
      if (c != '\n') line_ += c;
      // Bounded, or a tool that ends no line would fill the memory.
      if (c == '\n' || line_.size() == MAX_LINE) Flush();
    }
  }
  void Flush() {
    if (!line_.empty()) NORVIK_DETAIL(line_);
    line_.clear();
  }

 private:
  static constexpr std::size_t MAX_LINE = 4096;
  std::string line_;
};

}  // namespace

std::string CommandRunner::ExecCommand(const std::string& command) {
  std::string output;
  ErrorLog errors;
  Platform::ChildCommand child;
  child.words = {"/bin/sh", "-c", command};
  child.onOutput = [&](std::string_view piece) { output += piece; };
  child.onErrors = [&](std::string_view piece) { errors.Add(piece); };
  child.onlyAsks = true;
  const Platform::ChildResult result = Platform::RunChild(child);
  errors.Flush();
  if (!result.started) {
    NORVIK_WARNING(boost::format("Unable to run the command %1%: %2%") % command % result.problem);
  }
  return output;
}

}  // namespace Norvik::Common
