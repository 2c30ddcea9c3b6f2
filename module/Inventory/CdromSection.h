#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/CdromInfo.h"

namespace Norvik::KOB {

/// Optical drives on the SATA controllers of the machine.
class CdromSection final : public Common::ISection<std::list<CdromInfo>> {
 public:
  void GetInfo(std::list<CdromInfo>& result) override;
};

/// Fills the record of a drive from its entry in the I/O registry, and the disc in it from
/// `diskutil`. Without a disc, fills in only the drive's identity. The caller keeps `entry`.
void GetCdromDiskInfo(unsigned int& entry, CdromInfo& record);

}  // namespace Norvik::KOB
