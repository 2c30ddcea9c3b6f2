#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/VideoInfo.h"

namespace Norvik::KOB {

/// Graphics processors.
class VideoSection final : public Common::ISection<std::list<VideoInfo>> {
 public:
  void GetInfo(std::list<VideoInfo>& /*result*/) override {}  // Nothing is collected yet.
};

}  // namespace Norvik::KOB
