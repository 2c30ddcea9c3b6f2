#pragma once

#include "common/inventory/ISection.h"
#include "module/Entities/SystemInfo.h"

namespace Norvik::KOB {

/// Facts that the system reports about itself. The output of a tool is kept unchanged, with its
/// line ends. A missing tool leaves its field empty.
class SystemSection final : public Common::ISection<SystemInfo> {
 public:
  void GetInfo(SystemInfo& result) override;
  /// Sets the user of the newest login record; unchanged without a record.
  void SetUserName(SystemInfo& result);
};

}  // namespace Norvik::KOB
