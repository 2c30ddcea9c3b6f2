#include "module/DataAccess/RegisteredSoftwareRow.h"

namespace Norvik::KOB {

std::vector<Common::V2::DataBaseValue> RegisteredSoftwareRow(
    const Common::SoftwareRegisteredInfo& software) {
  return {software.isPatch ? 1 : 0,
          software.name,
          software.uninstallCommand,
          static_cast<long long>(software.installDate),
          software.version,
          software.publisher,
          static_cast<unsigned long long>(software.sizeBytes),
          software.productCode,
          software.source,
          software.location};
}

}  // namespace Norvik::KOB
