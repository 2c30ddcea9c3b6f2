#include "module/Actions/Mac/AdministeredMachine.h"

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <cerrno>

#include "common/commands/CommandRunner.h"
#include "common/text/Text.h"
#include "module/TaskTable.h"
#include "platform/compat/SentAppleEvents.h"

namespace Norvik::Tests {

namespace fs = boost::filesystem;
using namespace KOB;
using boost::replace_all_copy;
using Platform::RehearsedStep;

namespace {

std::vector<std::string> RowsOf(const Common::ActionResponseTable& table) {
  std::vector<std::string> rows;
  for (const auto& row : table.Rows()) {
    std::vector<std::string> cells;
    for (const auto& cell : row) cells.push_back(boost::get<std::string>(cell));
    rows.push_back(boost::join(cells, "|"));
  }
  return rows;
}

}  // namespace

int RecordedChanges::Kill(pid_t processId, int signal) {
  made.push_back("kill " + std::to_string(processId) + " " + std::to_string(signal));
  if (processId > 0 && processId == killable) return RealSystemChanges::Kill(processId, signal);
  errno = ESRCH;
  return -1;
}

int RecordedChanges::ChangeClock(const timeval& time) {
  const std::string fraction = std::to_string(1000000 + time.tv_usec).substr(1);
  made.push_back("settimeofday " + std::to_string(time.tv_sec) + "." + fraction);
  errno = EPERM;
  return clockCanBeSet ? 0 : -1;
}

int RecordedChanges::ClockError() { return clockCanBeSet ? 0 : EPERM; }

AdministeredMachine::AdministeredMachine() {
  Platform::SetSystemChanges(changes);
  Platform::TakeSentAppleEvents();
}

AdministeredMachine::~AdministeredMachine() {
  Platform::SetSystemChanges(nullptr);
  Platform::SetAppleEventAnswer(-600);
}

void AdministeredMachine::AddFile(const std::string& path, const std::string& content) {
  fs::create_directories((folder / path).parent_path());
  WriteFile(folder / path, content);
}

void AdministeredMachine::AddTool(const std::string& path, const std::string& script) {
  AddFile(path, "#!/bin/sh\nM='" + folder.Path().string() + "'\n" + script + "\n");
  fs::permissions(folder / path, fs::owner_all);
}

void AdministeredMachine::AddRecordedTool(const std::string& path, const std::string& script) {
  AddTool(path, "echo \"ran ${0##*/} $*\" >> \"$M/ran\"\n" + script);
}

struct AdministeredMachine::Outcome {
  Lines answer;  ///< table, success, text, statuses
  Lines ran;
  Lines calls;  ///< system calls and Apple events
  Lines rest;

  Lines All() const {
    Lines all;
    for (const Lines* part : {&answer, &ran, &calls, &rest}) {
      for (const auto& line : *part) all.push_back(replace_all_copy(line, "\n", "\\n"));
    }
    return all;
  }
};

AdministeredMachine::Lines AdministeredMachine::TakeToolCalls() {
  Lines ran;
  std::istringstream calls(ContentOf(folder / "ran"));
  for (std::string call; std::getline(calls, call);) ran.push_back(call);
  fs::remove(folder / "ran");
  return ran;
}

AdministeredMachine::Outcome AdministeredMachine::Run(unsigned int code, const Texts& texts) {
  Common::ActionParameters parameters;
  for (const auto& [name, text] : texts) {
    parameters.Set(name, Common::WxStringFromStdString(text));
  }
  const std::size_t logged = host.log.Lines().size();
  const auto response = module.Run(code, parameters);
  Outcome outcome;
  Lines& answer = outcome.answer = RowsOf(response.table);
  // A listing has the order of the file system, which varies.
  if (code == ACTION_LIST_FILES || code == ACTION_LIST_FOLDERS) {
    std::sort(answer.begin() + (response.table.HasTitles() ? 1 : 0), answer.end());
  }
  if (response.success) answer.push_back("success");
  if (response.text) answer.push_back("text " + *response.text);
  ExpectAsListed(code, parameters, host.communications->statuses, response);
  for (const auto& status : host.communications->TakeStatuses())
    answer.push_back("status " + status);
  outcome.ran = TakeToolCalls();
  outcome.calls = std::exchange(changes->made, {});
  for (const auto& event : Platform::TakeSentAppleEvents()) {
    outcome.calls.push_back("event " + event.eventClass + " " + event.eventId);
    EXPECT_EQ(event.addressType + std::to_string(event.address.size()), "psn 8");
  }
  outcome.rest = host.actions->Texts();
  host.actions->Forget();
  const auto log = host.log.Lines();
  for (std::size_t i = logged; i < log.size(); ++i) {
    if (log[i].level == 2) outcome.rest.push_back("error " + log[i].text);
    if (log[i].level == 3) outcome.rest.push_back("warning " + log[i].text);
  }
  return outcome;
}

AdministeredMachine::Lines AdministeredMachine::Request(unsigned int code, const Texts& texts) {
  return Run(code, texts).All();
}

AdministeredMachine::Outcome AdministeredMachine::Rehearse(unsigned int code, const Texts& texts,
                                                           std::vector<RehearsedStep>& steps) {
  const auto files = FilesBelow(folder.Path());
  const Platform::Rehearsal rehearsal;
  Outcome rehearsed = Run(code, texts);
  steps = rehearsal.Steps();
  EXPECT_EQ(FilesBelow(folder.Path()), files) << code;
  EXPECT_THAT(rehearsed.calls, testing::Each(testing::EndsWith(" 0"))) << code << " queries only";
  const auto asked = [](const RehearsedStep& step) { return step.kind == RehearsedStep::ASKED; };
  EXPECT_LE(rehearsed.ran.size(), std::count_if(steps.begin(), steps.end(), asked)) << code;
  rehearsed.calls.clear();
  for (const auto& step : steps) {
    if (step.kind == RehearsedStep::SYSTEM_CALL) rehearsed.calls.push_back(step.text);
    if (step.kind == RehearsedStep::APPLE_EVENT) rehearsed.calls.push_back("event " + step.text);
  }
  return rehearsed;
}

std::pair<AdministeredMachine::Lines, AdministeredMachine::Lines>
AdministeredMachine::RehearseAndRequest(unsigned int code, const Texts& texts) {
  std::vector<RehearsedStep> steps;
  Outcome rehearsed = Rehearse(code, texts, steps);
  auto files = FilesBelow(folder.Path());
  const Lines done = Request(code, texts);
  for (const auto& step : steps) {
    if (step.kind == RehearsedStep::REMOVAL && step.failure.empty()) {
      EXPECT_EQ(fs::symlink_status(step.text).type(), fs::file_not_found) << step.text;
      files.erase(fs::path(step.text).lexically_relative(folder.Path()).string());
    } else if (step.kind <= RehearsedStep::PROGRAM && step.failure.empty()) {
      Common::CommandRunner::ExecCommand(step.text);
    }
  }
  rehearsed.ran = TakeToolCalls();
  const auto left = FilesBelow(folder.Path());
  EXPECT_TRUE(std::includes(left.begin(), left.end(), files.begin(), files.end())) << code;
  return {rehearsed.All(), done};
}

void AdministeredMachine::RunRequests(const std::string& file) {
  std::ifstream stream(NORVIK_SOURCE_DIR "/tests/module/Actions/Mac/requests/" + file);
  ASSERT_TRUE(stream) << file;
  Lines request;
  for (std::string line; std::getline(stream, line) || !request.empty(); line.clear()) {
    if (!line.empty()) {
      request.push_back(line);
    } else if (!request.empty()) {
      RunRequest(std::exchange(request, {}));
    }
  }
}

void AdministeredMachine::RunRequest(const Lines& lines) {
  std::map<char, Lines> marked;  ///< by first character; outcome lines under a space
  for (const auto& line : lines) {
    const bool isMarked = line.find_first_of("#<>~") == 0;
    marked[isMarked ? line[0] : ' '].push_back(
        isMarked ? line.substr(std::min<std::size_t>(line.size(), 2))
                 : replace_all_copy(line, "$ROOT", (folder / "root").string()));
  }
  const std::string name = boost::join(marked['#'], "");
  if (!marked['<'].empty()) AddFile("input", boost::join(marked['<'], "\n") + "\n");
  Texts texts;
  for (const auto& parameter : Lines(marked['>'].begin() + 1, marked['>'].end())) {
    const auto equals = parameter.find('=');
    texts[parameter.substr(0, equals)] =
        replace_all_copy(parameter.substr(equals + 1), "\\n", "\n");
  }
  const auto code = static_cast<unsigned int>(std::stoul(marked['>'].at(0)));
  const auto [rehearsed, done] = RehearseAndRequest(code, texts);
  const Lines& expected = marked[marked['~'].empty() ? ' ' : '~'];
  EXPECT_EQ(boost::join(rehearsed, "\n"), boost::join(expected, "\n")) << name << ", rehearsed";
  EXPECT_EQ(boost::join(done, "\n"), boost::join(marked[' '], "\n")) << name;
}

}  // namespace Norvik::Tests
