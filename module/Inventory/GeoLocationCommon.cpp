#include "module/Inventory/GeoLocationCommon.h"

namespace Norvik::KOB {

// No position is asked for yet.
GeoLocationPoint GeoLocationCommon::GetLocation() const { return {}; }

}  // namespace Norvik::KOB
