#include "host/Identification.h"

#include <utility>

#include "common/log/Logger.h"
#include "host/machine/FirstInventory.h"

namespace Norvik::Host {

using namespace Common;

Identification::Identification(std::shared_ptr<const IdentityStore> identity)
    : identity_(std::move(identity)) {}

Identification::~Identification() = default;

void Identification::Gather() {
  NORVIK_SCOPE();
  smBios_ = ReadSmBios();
  firstInventory_ = std::make_unique<const FirstInventoryInfo>(GatherFirstInventory(*smBios_));
}

FirstInventoryInfo Identification::GetFirstInventoryInfo() {
  std::call_once(gathered_, [this] { Gather(); });
  return *firstInventory_;
}

std::weak_ptr<SmBios> Identification::GetSmBios() {
  std::call_once(gathered_, [this] { Gather(); });
  return smBios_;
}

}  // namespace Norvik::Host
