#include "platform/Rehearsal.h"

#include <time.h>

#include <cerrno>
#include <cstring>
#include <mutex>
#include <set>
#include <stdexcept>
#include <utility>

#include "platform/ExpectedErrors.h"

namespace Norvik::Platform {

namespace {

constexpr char PLAIN_CHARACTERS[] =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:=,+%@";

std::string Quoted(const std::string& word) {
  if (!word.empty() && word.find_first_not_of(PLAIN_CHARACTERS) == std::string::npos) return word;
  std::string text = "'";
  for (const char c : word) text += c == '\'' ? "'\\''" : std::string(1, c);
  return text + "'";
}

/// The line with which a shell runs the command.
std::string ShellText(const ChildCommand& command) {
  if (command.isShellLine) return command.words.back();
  std::string text;
  for (const auto& word : command.words) text += (text.empty() ? "" : " ") + Quoted(word);
  return text;
}

/// Which processes a number means that is not the number of one process.
std::string ProcessesOf(pid_t processId) {
  if (processId == 0) return "all processes of the agent's own group";
  if (processId == -1) return "all processes that the agent may signal";
  return processId < 0 ? "all processes of the group " + std::to_string(-(processId + 1LL) + 1)
                       : "";
}

std::string UtcText(time_t seconds) {
  tm fields{};
  char text[64];
  if (!::gmtime_r(&seconds, &fields)) return {};
  return {text, ::strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%SZ", &fields)};
}

}  // namespace

/// Notes the changes, and asks those that were in force before what they would fail with.
class Rehearsal::Recorder final : public SystemChanges {
 public:
  explicit Recorder(std::shared_ptr<SystemChanges> machine) : machine_(std::move(machine)) {}

  int Kill(pid_t processId, int signal) override {
    const std::string call = "kill " + std::to_string(processId) + " " + std::to_string(signal);
    // Signal 0 reaches no process, but fails as another one would.
    const int error = machine_->Kill(processId, 0) == 0 ? 0 : errno;
    return NoteChange(RehearsedStep::SYSTEM_CALL, call, ProcessesOf(processId), error);
  }

  int ChangeClock(const timeval& time) override {
    // Microseconds have six digits, with leading zeros.
    const std::string fraction = std::to_string(1'000'000 + time.tv_usec).substr(1);
    const std::string call = "settimeofday " + std::to_string(time.tv_sec) + "." + fraction;
    return NoteChange(RehearsedStep::SYSTEM_CALL, call, UtcText(time.tv_sec),
                      machine_->ClockError());
  }

  int Remove(const std::string& path) override {
    int error = 0;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      error = ExpectedRemovalError(path, removed_);
      if (error == 0) removed_.insert(CanonicalEntry(path));
    }
    return NoteChange(RehearsedStep::REMOVAL, path, "", error);
  }

  int RemoveAt(int /*folder*/, const std::string& /*name*/, const std::string& path) override {
    return Remove(path);
  }

  int Sync(int descriptor) override { return machine_->Sync(descriptor); }

  ChildResult Run(const ChildCommand& command) override {
    if (command.isQuery) {
      Note({RehearsedStep::ASKED, ShellText(command)});
      return machine_->Run(command);
    }
    ChildResult result;
    if (command.isShellLine) {
      Note({RehearsedStep::SHELL, ShellText(command)});
    } else {
      if (const int error = ExpectedStartError(command)) result = ChildResult::NotStarted(error);
      Note({RehearsedStep::PROGRAM, ShellText(command),
            command.account ? "as the user " + command.account->name : "", result.problem});
    }
    result.onlyNoted = true;
    result.started = result.problem.empty();
    if (result.started) result.exitCode = 0;
    return result;
  }

  int SendAppleEvent(const AEDesc& /*event*/, const std::string& name) override {
    const int status = machine_->AppleEventError();
    Note({RehearsedStep::APPLE_EVENT, name, "", status == 0 ? "" : "nothing here takes it"});
    return status;
  }

  int ClockError() override { return machine_->ClockError(); }
  int AppleEventError() override { return machine_->AppleEventError(); }

  void Note(const RehearsedStep& step) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    steps_.push_back(step);
  }

  std::vector<RehearsedStep> Steps() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return steps_;
  }

 private:
  /// Returns as the system call would.
  int NoteChange(RehearsedStep::Kind kind, const std::string& text, const std::string& detail,
                 int error) {
    Note({kind, text, detail, error == 0 ? "" : std::strerror(error)});
    errno = error;
    return error == 0 ? 0 : -1;
  }

  const std::shared_ptr<SystemChanges> machine_;
  mutable std::mutex mutex_;
  std::vector<RehearsedStep> steps_;
  std::set<std::string> removed_;  ///< as `CanonicalEntry` writes them
};

Rehearsal::Rehearsal() : former_(GetSystemChanges()) {
  if (std::dynamic_pointer_cast<Recorder>(former_)) {
    throw std::logic_error("a rehearsal is in force already");
  }
  recorder_ = std::make_shared<Recorder>(former_);
  SetSystemChanges(recorder_);
}

Rehearsal::~Rehearsal() { SetSystemChanges(former_); }

std::vector<RehearsedStep> Rehearsal::Steps() const { return recorder_->Steps(); }

}  // namespace Norvik::Platform
