#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/VideoInfo.h"

namespace Norvik::KOB {

/// Graphics accelerators. What the I/O registry does not tell as text comes from reports, whose
/// first match stands for every accelerator, with the blank before it and the line end behind it.
class VideoSection final : public Common::ISection<std::list<VideoInfo>> {
 public:
  void GetInfo(std::list<VideoInfo>& result) override;
};

// Two aids for those who look into a machine; the inventory calls neither.

/// Appends every accelerator of the machine, whatever its parent. The caller owns the handles.
void GetGPUList(unsigned int& parent, std::list<unsigned int>& out);
/// Writes the use of every accelerator that tells it to the system's log.
void displayGraphicsInfo();

}  // namespace Norvik::KOB
