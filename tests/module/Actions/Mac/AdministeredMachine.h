#pragma once

#include <optional>

#include "module/ModuleUnderTest.h"
#include "platform/RecordedMachine.h"
#include "platform/Rehearsal.h"
#include "platform/SystemChanges.h"

namespace Norvik::Tests {

/// Records signals and clock changes, and rejects them unless a test allows them. Makes all other
/// changes.
struct RecordedChanges final : Platform::RealSystemChanges {
  int Kill(pid_t processId, int signal) override;
  int ChangeClock(const timeval& time) override;
  int ClockError() override;

  std::vector<std::string> made;  ///< "kill 7 9", "settimeofday 1767225600.000000"
  pid_t killable = 0;             ///< a child process of the test, which gets the signal
  bool clockCanBeSet = false;     ///< whether success is reported; the clock is never set
};

/// A machine in a temporary folder with a module. Its tools are scripts. Nothing outside the folder
/// is changed.
class AdministeredMachine : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;
  using Texts = std::map<std::string, std::string>;

  AdministeredMachine();
  ~AdministeredMachine() override;

  void AddFile(const std::string& path, const std::string& content = "");
  /// Adds a shell script in which $M is the machine's folder.
  void AddTool(const std::string& path, const std::string& script);
  /// The same for a tool that also records its arguments.
  void AddRecordedTool(const std::string& path, const std::string& script = "");

  /// Runs a request and returns its whole outcome as lines. requests/README.md lists them.
  Lines Request(unsigned int code, const Texts& texts = {});
  /// Runs the requests of a file in requests/, in order, and checks their outcomes. Rehearses each
  /// request first: the rehearsal must report the same and change nothing.
  void RunRequests(const std::string& file);
  /// Runs a request twice and returns the lines of both: a rehearsal, which must change nothing,
  /// and the request itself, which must remove exactly the files that the rehearsal listed. Then
  /// runs the shell lines that the rehearsal noted, to get its "ran" lines.
  std::pair<Lines, Lines> RehearseAndRequest(unsigned int code, const Texts& texts = {});

  const std::shared_ptr<RecordedChanges> changes = std::make_shared<RecordedChanges>();
  FakeHost host;
  TemporaryFolder folder;
  /// Reset, the machine is the real one.
  std::optional<Platform::RecordedMachine> recorded{folder.Path().string()};
  ModuleUnderTest module{host};

 private:
  struct Outcome;

  void RunRequest(const Lines& lines);
  Outcome Run(unsigned int code, const Texts& texts);
  Outcome Rehearse(unsigned int code, const Texts& texts,
                   std::vector<Platform::RehearsedStep>& steps);
  Lines TakeToolCalls();
};

}  // namespace Norvik::Tests
