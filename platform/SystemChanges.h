#pragma once

#include <sys/time.h>
#include <sys/types.h>

#include <memory>
#include <string>

#include "platform/ChildProcess.h"

struct AEDesc;

namespace Norvik::Platform {

struct RehearsedStep;

/// Everything that the agent changes on the machine, apart from files of its own, and every sync of
/// those goes through the one object in force: the real one makes the change, that of a `Rehearsal`
/// only notes it, and a test can install its own. All methods may be called on any thread.
class SystemChanges {
 public:
  virtual ~SystemChanges();

  // Results as of the system calls: 0, or -1 with the reason in `errno`.

  virtual int Kill(pid_t processId, int signal) = 0;
  /// Refuses, with EINVAL, the zero time, which stands for a text that is no date, and all before.
  int SetClock(const timeval& time);
  /// Removes a file, a link or an empty folder.
  virtual int Remove(const std::string& path) = 0;
  /// Removes a file or a link from an open folder.
  /// @param path the same entry, for reports
  virtual int RemoveAt(int folder, const std::string& name, const std::string& path) = 0;

  /// Waits until what was written to a file or a folder is on the disk. A rehearsal does it as
  /// well.
  virtual int Sync(int descriptor) = 0;

  /// Runs a program to its end, also one that only queries; `RunChild` checks the words before.
  virtual ChildResult Run(const ChildCommand& command) = 0;

  /// Sends an Apple Event and waits for no reply. Returns 0 or the status of the failure.
  /// @param name class and event for reports, as "aevt shut"
  virtual int SendAppleEvent(const AEDesc& event, const std::string& name) = 0;

  // What a rehearsal asks before it reports a change as done. Nothing is changed.

  /// 0, or the errno with which `SetClock` would fail.
  virtual int ClockError() = 0;
  /// 0, or the status with which `SendAppleEvent` would fail.
  virtual int AppleEventError() = 0;

  /// Reports a step that changes nothing: a query made in another way than by `Run`, or a program
  /// that is refused before it could be run. Only a rehearsal keeps it.
  virtual void Note(const RehearsedStep& step) = 0;

 protected:
  virtual int ChangeClock(const timeval& time) = 0;

  SystemChanges() = default;
  SystemChanges(const SystemChanges&) = default;
  SystemChanges& operator=(const SystemChanges&) = default;
};

/// Makes the changes. A test derives from it and overrides those that it must not make.
class RealSystemChanges : public SystemChanges {
 public:
  int Kill(pid_t processId, int signal) override;
  int Remove(const std::string& path) override;
  int RemoveAt(int folder, const std::string& name, const std::string& path) override;
  int Sync(int descriptor) override;
  ChildResult Run(const ChildCommand& command) override;
  int SendAppleEvent(const AEDesc& event, const std::string& name) override;
  int ClockError() override;
  int AppleEventError() override;
  void Note(const RehearsedStep& step) override;

 protected:
  int ChangeClock(const timeval& time) override;
};

/// The object in force, never null, and its replacement; null stands for the real one. Replace it
/// while no other thread makes changes.
std::shared_ptr<SystemChanges> GetSystemChanges();
void SetSystemChanges(std::shared_ptr<SystemChanges> changes);

}  // namespace Norvik::Platform
