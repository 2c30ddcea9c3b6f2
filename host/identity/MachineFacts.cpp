#include "host/identity/MachineFacts.h"

#include <utility>

#include "common/log/Logger.h"
#include "common/progress/Progress.h"
#include "machine/FirstInventory.h"
#include "machine/Gather.h"

namespace Norvik::Host {

using namespace Common;

MachineFacts::MachineFacts(std::shared_ptr<const AgentIdentity> identity)
    : identity_(std::move(identity)) {}

MachineFacts::~MachineFacts() = default;

void MachineFacts::Gather() {
  NORVIK_SCOPE();
  {
    // Most of the table is for this section, though others read from it too.
    const SectionScope progress({"bios"});
    smBios_ = Machine::ReadSmBios();
  }
  firstInventory_ =
      std::make_unique<const FirstInventoryInfo>(Machine::GatherFirstInventory(*smBios_));
}

FirstInventoryInfo MachineFacts::GetFirstInventoryInfo() {
  std::call_once(gathered_, [this] { Gather(); });
  return *firstInventory_;
}

std::weak_ptr<SmBios> MachineFacts::GetSmBios() {
  std::call_once(gathered_, [this] { Gather(); });
  return smBios_;
}

}  // namespace Norvik::Host
