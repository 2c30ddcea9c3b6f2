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

void MachineFacts::ModuleIsMade() {
  const std::lock_guard<std::mutex> lock(mutex_);
  isModuleMade_ = true;
}

void MachineFacts::ReadTable() {
  if (smBios_ && smBios_->IsValid()) return;
  // Most of the table is for this section, though others read from it too.
  const SectionScope progress({"bios"});
  std::shared_ptr<SmBios> table = Machine::ReadSmBios();
  if (!smBios_ || table->IsValid()) noTable_ = std::exchange(smBios_, std::move(table));
}

FirstInventoryInfo MachineFacts::GetFirstInventoryInfo() {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto made = isModuleMade_ ? std::exchange(forModule_, boost::none) : forModule_;
  const auto now = std::chrono::steady_clock::now();
  if (made && now - gathered_ < SERVES_FOR) return *made;
  NORVIK_SCOPE();
  ReadTable();
  FirstInventoryInfo facts = Machine::GatherFirstInventory(*smBios_);
  if (!isModuleMade_) {
    forModule_ = facts;
    gathered_ = std::chrono::steady_clock::now();
  }
  return facts;
}

std::weak_ptr<SmBios> MachineFacts::GetSmBios() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!smBios_) ReadTable();
  return smBios_;
}

}  // namespace Norvik::Host
