#include "host/ForeignComplaints.h"

#include <algorithm>
#include <iterator>

#include "platform/RecordedMachine.h"

namespace Norvik::Host {

bool IsForeignComplaint(const std::string& text) {
  static constexpr const char* TEXTS[] = {"Attempt to read SPUSBDataType failed",
                                          "Location Services of this device are disabled",
                                          "No \"IOPlatformExpertDevice\" IOService in IORegistry "};
  return std::find(std::begin(TEXTS), std::end(TEXTS), text) != std::end(TEXTS) &&
         !Platform::IsMachineRecorded();
}

}  // namespace Norvik::Host
