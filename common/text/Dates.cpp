#include "common/text/Dates.h"

#include <locale.h>
#include <time.h>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

#include <cctype>
#include <cstdio>

namespace Norvik::Common {

namespace {

using std::chrono::system_clock;

/// Sets the "C" locale for this thread, for the names of months and days.
class CLocaleScope {
 public:
  CLocaleScope() : locale_(::newlocale(LC_ALL_MASK, "C", nullptr)) {
    if (locale_) former_ = ::uselocale(locale_);
  }
  CLocaleScope(const CLocaleScope&) = delete;
  CLocaleScope& operator=(const CLocaleScope&) = delete;
  ~CLocaleScope() {
    if (!locale_) return;
    ::uselocale(former_);
    ::freelocale(locale_);
  }

 private:
  locale_t locale_;
  locale_t former_ = nullptr;
};

bool DayExists(const ::tm& fields) {
  static constexpr int DAYS[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const int year = fields.tm_year + 1900;
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  const int days = DAYS[fields.tm_mon] + (leap && fields.tm_mon == 1 ? 1 : 0);
  return fields.tm_mday <= days;
}

/// Fills the fields from the whole text. White space at the end is ignored.
bool Parse(const std::string& text, const std::string& format, ::tm& fields) {
  const CLocaleScope scope;
  const char* rest = ::strptime(text.c_str(), format.c_str(), &fields);
  if (!rest) return false;
  const char* const end = text.data() + text.size();
  while (rest != end && std::isspace(static_cast<unsigned char>(*rest))) ++rest;
  return rest == end && DayExists(fields);
}

/// The zero time point for a time beyond the range of the clock.
system_clock::time_point TimePointOf(::time_t time) {
  const auto latest =
      std::chrono::duration_cast<std::chrono::seconds>(system_clock::duration::max()).count();
  if (time > latest || time < -latest) return {};
  return system_clock::from_time_t(time);
}

system_clock::time_point TimePointFromText(const std::string& text, const std::string& format,
                                           ::time_t (*convert)(::tm*)) {
  ::tm fields{};
  fields.tm_year = 70;
  fields.tm_mday = 1;
  fields.tm_isdst = -1;
  if (!Parse(text, format, fields)) return {};
  return TimePointOf(convert(&fields));
}

std::string FormatUTC(long seconds, bool withTime) {
  const ::time_t time = seconds;
  ::tm fields{};
  if (!::gmtime_r(&time, &fields)) return {};
  char text[64];
  const long year = fields.tm_year + 1900L;
  int length =
      std::snprintf(text, sizeof(text), "%04ld-%02d-%02d", year, fields.tm_mon + 1, fields.tm_mday);
  std::string result(text, static_cast<std::size_t>(length));
  if (!withTime) return result;
  length = std::snprintf(text, sizeof(text), "T%02d:%02d:%02dZ", fields.tm_hour, fields.tm_min,
                         fields.tm_sec);
  return result.append(text, static_cast<std::size_t>(length));
}

}  // namespace

std::string DateToISODateUTC(long seconds) { return FormatUTC(seconds, false); }

std::string DateToISOCombinedUTC(long seconds) { return FormatUTC(seconds, true); }

system_clock::time_point StringToTimePoint(const std::string& text, const std::string& format) {
  return TimePointFromText(text, format, ::mktime);
}

system_clock::time_point UTCStringToTimePoint(const std::string& text, const std::string& format) {
  return TimePointFromText(text, format, ::timegm);
}

}  // namespace Norvik::Common
