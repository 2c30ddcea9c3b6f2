#pragma once

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "module/ModuleUnderTest.h"
#include "platform/RecordedMachine.h"
#include "platform/Rehearsal.h"
#include "platform/SystemChanges.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Tests {

/// Records signals and clock changes, and refuses them unless a test allows them. Makes the others.
struct RecordedChanges final : Platform::RealSystemChanges {
  int Kill(pid_t processId, int signal) override;
  int SetClock(const timeval& time) override;
  int ClockError() override;

  std::vector<std::string> made;  ///< "kill 7 9", "settimeofday 1767225600.000000"
  pid_t killable = 0;             ///< a child of the test's own, which gets the signal
  bool clockCanBeSet = false;     ///< reported only: the clock is never set
};

/// A machine in a temporary folder with a module on it. Its tools are scripts; nothing outside of
/// the folder is changed.
class AdministeredMachine : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;
  using Texts = std::map<std::string, std::string>;

  AdministeredMachine();
  ~AdministeredMachine() override;

  /// Makes the folders above it.
  void AddFile(const std::string& path, const std::string& content = "");
  /// A shell script in which $M is the machine's folder.
  void AddTool(const std::string& path, const std::string& script);
  /// The same for a tool that also records how it was called.
  void AddRecordedTool(const std::string& path, const std::string& script = "");

  /// The whole outcome of a request, in this order: the table's rows, those of folders sorted after
  /// the titles; "success"; "text ..."; "status ..." each; "ran ..." of the tools; system calls;
  /// "event ..."; actions that were started; "error ..." and "warning ..." of the log. A newline in
  /// a line is written \n.
  Lines Ask(unsigned int code, const Texts& texts = {});
  /// Makes the requests of a file, one after the other, and compares their outcomes. A request is
  /// its name after "#"; the content of the file `input` in the machine's folder from now on, after
  /// "<"; the code and "name=value" of each parameter, after ">"; and the lines of `Ask`, in which
  /// $ROOT is the folder of the machine's files. A blank line ends it.
  ///
  /// Each request is rehearsed first, which must report the same and change nothing. Where a
  /// rehearsal cannot know what a tool will print, its own outcome stands in lines after "~".
  void Follow(const std::string& file);
  /// Makes a request twice and returns the lines of both: a rehearsal, which must change nothing,
  /// and the request itself, which must remove just the files that the rehearsal named. The shell
  /// lines that the rehearsal noted are run after that, for its lines of "ran".
  std::pair<Lines, Lines> RehearseAndAsk(unsigned int code, const Texts& texts = {});

  const std::shared_ptr<RecordedChanges> changes = std::make_shared<RecordedChanges>();
  FakeHost host;
  TemporaryFolder folder;
  Platform::RecordedMachine recorded{folder.Path().string()};
  ModuleUnderTest module{host};

 private:
  struct Outcome;

  void FollowOne(const Lines& lines);
  Outcome Run(unsigned int code, const Texts& texts);
  Outcome Rehearse(unsigned int code, const Texts& texts,
                   std::vector<Platform::RehearsedStep>& steps);
  Lines TakeRan();
};

}  // namespace Norvik::Tests
