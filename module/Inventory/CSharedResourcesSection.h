#pragma once

#include <functional>
#include <list>
#include <string>

#include "common/inventory/ISection.h"
#include "module/Entities/SharedResourceInfo.h"

namespace Norvik::KOB {

/// Folders that the machine shares. Leaves the files "/tmp/shareList" and
/// "/tmp/propertyShare".
class CSharedResourcesSection final : public Common::ISection<std::list<SharedResourceInfo>> {
 public:
  void GetInfo(std::list<SharedResourceInfo>& result) override;
};

/// Returns what the system's tool prints of the share with that name.
using PropertiesOfShare = std::function<std::string(const std::string& name)>;

/// The shares in a list of names, one per line. Calls `propertiesOf` for each line, even for an
/// empty one, which yields no share.
std::list<SharedResourceInfo> ReadShares(const std::string& names,
                                         const PropertiesOfShare& propertiesOf);

}  // namespace Norvik::KOB
