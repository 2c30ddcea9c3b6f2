#pragma once

#include <list>
#include <memory>
#include <string>
#include <utility>

#include "common/database/IDataBase.h"
#include "common/inventory/ISection.h"
#include "module/Entities/NetworkDriveInfo.h"

namespace Norvik::KOB {

/// Mounted network volumes. Never raises: a failure is logged and ends the list.
class NetworkDrivesSection final : public Common::ISection<std::list<NetworkDriveInfo>> {
 public:
  explicit NetworkDrivesSection(std::weak_ptr<Common::IDataBase> dataBase)
      : dataBase_(std::move(dataBase)) {}
  void GetInfo(std::list<NetworkDriveInfo>& result) override;

 private:
  std::weak_ptr<Common::IDataBase> dataBase_;
};

/// The server in the source of a volume: what stands between the last "@" and the next "/". A
/// source without "@" counts whole.
std::string ServerOfVolume(const std::string& source);

}  // namespace Norvik::KOB
