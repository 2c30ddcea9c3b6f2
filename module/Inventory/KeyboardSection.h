#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/KeyboardInfo.h"

namespace Norvik::KOB {

/// Keyboards.
class KeyboardSection final : public Common::ISection<std::list<KeyboardInfo>> {
 public:
  void GetInfo(std::list<KeyboardInfo>& /*result*/) override {}  // Nothing is collected yet.
};

}  // namespace Norvik::KOB
