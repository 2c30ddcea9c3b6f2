#include "platform/Permissions.h"

#include "platform/RecordedMachine.h"
#include "platform/compat/Recording.h"

namespace Norvik::Platform {

/// A recording has positions only if they were given.
Permission LocationPermission() {
  if (!IsMachineRecorded()) return Permission::UNKNOWN;
  const RecordedLocation location = ReadRecordedLocation();
  if (!location.enabled) return Permission::REFUSED;
  return location.fixes.empty() ? Permission::UNKNOWN : Permission::GRANTED;
}

Permission AppleEventPermission() { return Permission::UNKNOWN; }

}  // namespace Norvik::Platform
