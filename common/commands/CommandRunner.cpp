#include "common/commands/CommandRunner.h"

#include <atomic>
#include <boost/format.hpp>
#include <cstddef>
#include <string_view>

#include "common/commands/ToolOfLine.h"
#include "common/log/Logger.h"
#include "common/progress/Progress.h"
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

ToolRun::Outcome OutcomeOf(const std::string& line, const Platform::ChildResult& run,
                           bool hasPrinted) {
  if (!run.started) return ToolRun::NOT_STARTED;
  if (run.limit == Platform::ChildResult::Limit::TIME) return ToolRun::TOO_LONG;
  if (run.limit == Platform::ChildResult::Limit::OUTPUT) return ToolRun::TOO_MUCH;
  if (!hasPrinted && FindProgram(ToolOfLine(line)).empty()) return ToolRun::MISSING;
  // Behind filters the code is that of the last of them: grep has one for "nothing found".
  const bool isOfTool = line.find('|') == std::string::npos;
  return run.exitCode != 0 && isOfTool ? ToolRun::FAILED : ToolRun::DONE;
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
  const auto begin = std::chrono::steady_clock::now();
  const Platform::ChildResult run = Platform::RunChild(child);
  const auto taken = std::chrono::steady_clock::now() - begin;
  errors.Flush();
  if (isQuery) {
    const auto outcome = OutcomeOf(line, run, !result.output.empty());
    ReportTool({QuestionOfLine(line), outcome, run.exitCode, taken});
  }
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
