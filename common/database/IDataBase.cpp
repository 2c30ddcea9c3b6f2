#include "common/database/IDataBase.h"

namespace Norvik::Common {

IDataBase::~IDataBase() = default;

}  // namespace Norvik::Common
