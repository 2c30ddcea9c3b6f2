#pragma once

#include <list>
#include <memory>
#include <utility>

#include "common/database/IDataBase.h"
#include "common/inventory/ISection.h"
#include "module/Entities/NetworkDriveInfo.h"

namespace Norvik::KOB {

/// Mounted network volumes.
class NetworkDrivesSection final : public Common::ISection<std::list<NetworkDriveInfo>> {
 public:
  explicit NetworkDrivesSection(std::weak_ptr<Common::IDataBase> dataBase)
      : dataBase_(std::move(dataBase)) {}
  void GetInfo(std::list<NetworkDriveInfo>& /*result*/) override {}  // Nothing is collected yet.

 private:
  std::weak_ptr<Common::IDataBase> dataBase_;
};

}  // namespace Norvik::KOB
