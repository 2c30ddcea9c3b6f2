#include "host/ForeignComplaints.h"

namespace Norvik::Host {

bool IsForeignComplaint(const std::string& /*text*/) { return false; }

}  // namespace Norvik::Host
