#pragma once

#include <string>
#include <vector>

namespace Norvik::Platform {

/// Something that the machine was asked for while a rehearsal was in force.
struct RehearsedStep {
  enum Kind {
    ASKED,        ///< a line or program that only asks; it did run
    SHELL,        ///< a line for the shell
    PROGRAM,      ///< a program without a shell; the text is a line that a shell would take for it
    SYSTEM_CALL,  ///< as "kill 7 9"
    REMOVAL,      ///< path of a file, or of an empty folder
    APPLE_EVENT,  ///< class and event, as "aevt shut"
  };

  Kind kind;
  std::string text;
  std::string detail;   ///< what the text does not tell, in words; may be empty
  std::string failure;  ///< why it would fail, as far as a look can tell; else empty
};

/// As long as this lives the process changes nothing on the machine: what would is noted instead,
/// and answered as if it had gone well, or as it would fail if a cheap look can tell. What only
/// asks goes on. One at a time; make and end it while no other thread runs actions.
///
/// What a process keeps for itself, such as its database, is changed all the same: point it to a
/// copy before.
class Rehearsal {
 public:
  /// Raises `std::logic_error` if another one is in force.
  Rehearsal();
  Rehearsal(const Rehearsal&) = delete;
  Rehearsal& operator=(const Rehearsal&) = delete;
  ~Rehearsal();

  /// All that was noted, in order. Safe on any thread.
  std::vector<RehearsedStep> Steps() const;
};

/// The question ahead of each change: if so, note it (below) and leave it.
bool IsRehearsed();
/// Without a rehearsal nothing happens. Leaves `errno` as it is.
void NoteStep(RehearsedStep step);

/// Notes the removal of a file or an empty folder. False, with the reason in `errno`, if it would
/// fail; what the rehearsal has removed before counts as gone.
bool RehearseRemoval(const std::string& path);
/// Notes an Apple Event to the system and gives the status that sending it would: on a system that
/// has none, the one of a receiver that is not there.
int RehearseAppleEvent(const std::string& text);

}  // namespace Norvik::Platform
