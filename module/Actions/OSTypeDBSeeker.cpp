#include "module/Actions/OSTypeDBSeeker.h"

#include "common/database/DataBase.h"
#include "common/text/OperatingSystemType.h"

namespace Norvik::KOB {

int OSTypeDBSeeker::GetOSType() const {
  const auto recorded =
      Common::V2::DataBase::GetOptionalStringDataTable(Common::OPERATING_SYSTEM_AGENT_DATA);
  return recorded ? static_cast<int>(Common::OperatingSystemType::FromString(*recorded)) : -1;
}

}  // namespace Norvik::KOB
