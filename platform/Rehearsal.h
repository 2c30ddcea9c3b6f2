#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/SystemChanges.h"

namespace Norvik::Platform {

/// One step that a rehearsal has noted.
struct RehearsedStep {
  enum Kind {
    ASKED,        ///< a shell line or a program that only queries; it did run
    SHELL,        ///< a line for the shell
    PROGRAM,      ///< a program without a shell; the text is the line with which a shell runs it
    SYSTEM_CALL,  ///< as "kill 7 9"
    REMOVAL,      ///< path of a file, or of an empty folder
    APPLE_EVENT,  ///< class and event, as "aevt shut"
  };

  Kind kind;
  std::string text;
  std::string detail = {};   ///< what the text leaves out, in words; may be empty
  std::string failure = {};  ///< why the change would fail, if that shows; else empty
};

/// As long as this object lives, its own `SystemChanges` are in force, on top of those that were in
/// force before: nothing on the machine changes. Each change is noted and reported to its caller as
/// done, or as failed if the failure shows beforehand. What only queries the machine runs. One at a
/// time; make and end it while no other thread runs actions.
///
/// What a process keeps for itself, such as its database, does change: work on a copy.
class Rehearsal {
 public:
  /// Throws `std::logic_error` if another one is in force.
  Rehearsal();
  Rehearsal(const Rehearsal&) = delete;
  Rehearsal& operator=(const Rehearsal&) = delete;
  ~Rehearsal();

  /// All steps so far, in order. Safe on any thread.
  std::vector<RehearsedStep> Steps() const;

 private:
  class Recorder;

  std::shared_ptr<SystemChanges> former_;
  std::shared_ptr<Recorder> recorder_;
};

}  // namespace Norvik::Platform
