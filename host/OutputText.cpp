#include "host/OutputText.h"

#include <boost/format.hpp>
#include <utility>

#include "common/text/Dates.h"

namespace Norvik::Host {

std::string JsonText(const OrderedJson& value) {
  return value.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
}

std::string JsonLine(const OrderedJson& value) { return JsonText(value) + "\n"; }

std::string TimeText(std::chrono::system_clock::time_point time) {
  return Common::DateToISOCombinedUTC(
      static_cast<long>(std::chrono::system_clock::to_time_t(time)));
}

std::string SizeText(std::uintmax_t bytes) {
  if (bytes < 1000) return std::to_string(bytes) + " bytes";
  double size = static_cast<double>(bytes) / 1000;
  const char* unit = "kB";
  for (const char* larger : {"MB", "GB", "TB"}) {
    // From here on the rounded size would have a fourth digit.
    if (size < 999.95) break;
    size /= 1000;
    unit = larger;
  }
  return (boost::format("%.1f %s") % size % unit).str();
}

std::string PeriodText(std::chrono::seconds period) {
  const std::pair<long long, const char*> units[] = {
      {86400, "day"}, {3600, "hour"}, {60, "minute"}, {1, "second"}};
  long long rest = period.count();
  std::string text;
  int shown = 0;
  for (const auto& [length, name] : units) {
    const long long count = rest / length;
    rest %= length;
    if (shown > 0) ++shown;
    if (count == 0) continue;
    text +=
        (text.empty() ? "" : " ") + std::to_string(count) + " " + name + (count == 1 ? "" : "s");
    if (shown == 0) shown = 1;
    if (shown == 2) break;
  }
  return text.empty() ? "0 seconds" : text;
}

}  // namespace Norvik::Host
