#include "module/Entities/PermissionInfo.h"

#include <boost/property_tree/ptree.hpp>

namespace Norvik::KOB {

PermissionInfo::PermissionInfo(const boost::property_tree::ptree& node) {
  json::ReadFields(node, *this);
}

bool PermissionInfo::operator==(const PermissionInfo& other) const {
  return json::FieldsEqual(*this, other);
}

}  // namespace Norvik::KOB
