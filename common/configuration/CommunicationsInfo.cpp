#include "common/configuration/CommunicationsInfo.h"

namespace Norvik::Common {

ConfigurationInfoBase::~ConfigurationInfoBase() = default;

}  // namespace Norvik::Common
