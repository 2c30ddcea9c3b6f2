#pragma once

#include <list>
#include <memory>
#include <string>
#include <utility>

#include "common/database/IDataBase.h"
#include "common/inventory/ISection.h"
#include "module/Entities/NetworkDriveInfo.h"

namespace Norvik::KOB {

/// Mounted network volumes. Never throws: a failure is logged and ends the list.
class NetworkDrivesSection final : public Common::ISection<std::list<NetworkDriveInfo>> {
 public:
  explicit NetworkDrivesSection(std::weak_ptr<Common::IDataBase> dataBase)
      : dataBase_(std::move(dataBase)) {}
  void GetInfo(std::list<NetworkDriveInfo>& result) override;

 private:
  std::weak_ptr<Common::IDataBase> dataBase_;
};

/// The server in the source of a volume: the text between the last "@" and the next "/". Without
/// "@", the whole source.
std::string ServerOfVolume(const std::string& source);

}  // namespace Norvik::KOB
