#include "host/identity/HardwareIdentity.h"

#include "common/text/Text.h"
#include "machine/Gather.h"

namespace Norvik::Host {

HardwareIdentity ReadHardwareIdentity() {
  // Not from SMBIOS, whose UUID has another order of bytes on some machines.
  Common::SetupInfo setup;
  Machine::CompleteSetup(setup);
  return {Common::ToUtf8(setup.system.serial), Common::ToUtf8(setup.modelIdentifier),
          Common::ToUtf8(setup.system.uuid)};
}

}  // namespace Norvik::Host
