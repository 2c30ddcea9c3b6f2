#pragma once

#include <stdlib.h>
#include <time.h>

#include <optional>
#include <string>

namespace Norvik::Tests {

/// While it lives, local time is that of a zone.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) {
    if (const char* const previous = ::getenv("TZ")) previous_ = previous;
    Set(zone);
  }
  ~TimeZone() { Set(previous_ ? previous_->c_str() : nullptr); }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  static void Set(const char* zone) {
    if (zone) {
      ::setenv("TZ", zone, 1);
    } else {
      ::unsetenv("TZ");
    }
    ::tzset();
  }
  std::optional<std::string> previous_;
};

}  // namespace Norvik::Tests
