#include "module/Entities/GeoLocationPoint.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::KOB {

bool GeoLocationPoint::IsZero() const {
  return longitude == 0.0 && latitude == 0.0 && height == 0.0 && acceleration == 0.0;
}

}  // namespace Norvik::KOB

template class Norvik::Common::WrittenRecord<Norvik::KOB::GeoLocationPoint>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::GeoLocationPoint>;
