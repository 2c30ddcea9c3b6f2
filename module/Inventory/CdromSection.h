#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/CdromInfo.h"

namespace Norvik::KOB {

/// Optical drives at the SATA controllers of the machine.
class CdromSection final : public Common::ISection<std::list<CdromInfo>> {
 public:
  void GetInfo(std::list<CdromInfo>& result) override;
};

/// Fills the record of a drive from its entry in the I/O registry, and asks `diskutil` about the
/// disc in it. Without a disc only the drive's identity is filled in.
void GetCdromDiskInfo(unsigned int& entry, CdromInfo& record);

}  // namespace Norvik::KOB
