#include "host/OutputText.h"

#include "common/text/Dates.h"

namespace Norvik::Host {

std::string JsonLine(const OrderedJson& value) {
  return value.dump(-1, ' ', false, OrderedJson::error_handler_t::replace) + "\n";
}

std::string TimeText(std::chrono::system_clock::time_point time) {
  return Common::DateToISOCombinedUTC(
      static_cast<long>(std::chrono::system_clock::to_time_t(time)));
}

}  // namespace Norvik::Host
