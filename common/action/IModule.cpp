#include "common/action/IModule.h"

namespace Norvik::Common {

IModule::~IModule() = default;

}  // namespace Norvik::Common
