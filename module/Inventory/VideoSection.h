#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/VideoInfo.h"

namespace Norvik::KOB {

/// Graphics accelerators. What the I/O registry does not hold as text comes from reports. The first
/// match of a report is used for every accelerator, with the space before it and the line end after
/// it.
class VideoSection final : public Common::ISection<std::list<VideoInfo>> {
 public:
  void GetInfo(std::list<VideoInfo>& result) override;
};

// Diagnostic functions, which the inventory does not call.

/// Appends every accelerator of the machine, whatever its parent. The caller owns the handles.
void GetGPUList(unsigned int& parent, std::list<unsigned int>& out);
/// Writes the utilization of every accelerator that reports it to the system's log.
void displayGraphicsInfo();

}  // namespace Norvik::KOB
