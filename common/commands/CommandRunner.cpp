#include "common/commands/CommandRunner.h"

#include <atomic>
#include <boost/format.hpp>
#include <cstddef>
#include <string_view>

#include "common/log/Logger.h"
#include "platform/ChildProcess.h"

namespace Norvik::Common {

namespace {

/// Logs the standard error of a tool line by line.
class ErrorLog {
 public:
  void Add(std::string_view piece) {
    for (const char c : piece) {
      if (c != '\n') line_ += c;
      // Bounded, because a tool that ends no line would fill the memory.
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

std::atomic<std::chrono::seconds> queryLimit{std::chrono::seconds::zero()};

const char* ReasonOf(Platform::ChildResult::Limit limit) {
  return limit == Platform::ChildResult::Limit::TIME ? "it ran too long" : "it printed too much";
}

CommandRunner::ChangeResult RunLine(const std::string& line, bool isQuery) {
  CommandRunner::ChangeResult result;
  ErrorLog errors;
  Platform::ChildCommand child = Platform::ChildCommand::ShellLine(line);
  child.isQuery = isQuery;
  if (isQuery) child.timeLimit = queryLimit.load();
  child.outputLimit = CommandRunner::MAX_OUTPUT;
  child.onOutput = [&](std::string_view piece) { result.output += piece; };
  child.onErrors = [&](std::string_view piece) { errors.Add(piece); };
  const Platform::ChildResult run = Platform::RunChild(child);
  errors.Flush();
  if (!run.started) {
    NORVIK_WARNING(boost::format("Unable to run the command %1%: %2%") % line % run.problem);
  }
  if (run.limit != Platform::ChildResult::Limit::NONE) {
    NORVIK_WARNING(boost::format("The command %1% was ended: %2%") % line % ReasonOf(run.limit));
    result.output.clear();
  }
  result.onlyNoted = run.onlyNoted;
  return result;
}

}  // namespace

void CommandRunner::SetQueryLimit(std::chrono::seconds limit) { queryLimit = limit; }

std::string CommandRunner::ExecCommand(const std::string& command) {
  return RunLine(command, true).output;
}

CommandRunner::ChangeResult CommandRunner::ExecChange(const std::string& command) {
  return RunLine(command, false);
}

}  // namespace Norvik::Common
