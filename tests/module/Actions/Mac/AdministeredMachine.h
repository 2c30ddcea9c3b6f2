#pragma once

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "module/Actions/Mac/WrappedCalls.h"
#include "module/ModuleUnderTest.h"
#include "platform/RecordedMachine.h"
#include "platform/Rehearsal.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Tests {

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
  /// The same for one that also writes down how it was called.
  void AddRecordedTool(const std::string& path, const std::string& script = "");

  /// All that comes of a request, in this order: the table's rows, those of folders sorted behind
  /// the titles; "success"; "text ..."; "status ..." each; "ran ..." of the tools; system calls;
  /// "event ..."; actions that were started; "error ..." and "warning ..." of the log. A line end
  /// inside is written \n.
  Lines Ask(unsigned int code, const Texts& texts = {});
  /// Puts the requests of a file, one after the other, and compares what comes of them. A request
  /// is its name behind "#"; what `input` of the machine's folder holds from now on, behind "<";
  /// the code and "name=value" of each parameter, behind ">"; and the lines of `Ask`, in which
  /// $ROOT is the folder of the machine's files. A blank line ends it.
  ///
  /// Each is rehearsed first, which must tell the same and do nothing. Where a rehearsal cannot
  /// know what a tool will answer, what it tells instead stands in lines behind "~".
  void Follow(const std::string& file);
  /// Asks twice and gives the lines of both: a rehearsal, which must do nothing, and in earnest,
  /// which must remove just the files that the rehearsal named. What the rehearsal said that the
  /// shell would get is run behind that, for its lines of "ran".
  std::pair<Lines, Lines> RehearseAndAsk(unsigned int code, const Texts& texts = {});

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
