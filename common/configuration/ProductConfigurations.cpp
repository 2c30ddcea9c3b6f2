#include "common/configuration/ProductConfigurations.h"

namespace Norvik::Common {

HoltConfigurationInfo::~HoltConfigurationInfo() = default;
SoftwareIdentificationInfo::~SoftwareIdentificationInfo() = default;
SoftwareUsageInfo::~SoftwareUsageInfo() = default;
GlyConfigurationInfo::~GlyConfigurationInfo() = default;

}  // namespace Norvik::Common
