#pragma once

namespace Norvik::KOB {

/// Tells which type of operating system the agent has recorded.
class IOSTypeSeeker {
 public:
  virtual ~IOSTypeSeeker() = default;
  /// Number of an `OperatingSystemType`; -1 while none is recorded.
  virtual int GetOSType() const = 0;

 protected:
  IOSTypeSeeker() = default;
  IOSTypeSeeker(const IOSTypeSeeker&) = default;
  IOSTypeSeeker& operator=(const IOSTypeSeeker&) = default;
};

}  // namespace Norvik::KOB
