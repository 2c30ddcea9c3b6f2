#include "common/text/Dates.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <climits>
#include <clocale>

namespace {

using namespace Norvik::Common;
using std::chrono::system_clock;

/// Puts a time zone in force for a scope.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;
  ~TimeZone() {
    ::unsetenv("TZ");
    ::tzset();
  }
};

long SecondsOf(const system_clock::time_point& time) { return system_clock::to_time_t(time); }

TEST(Dates, AreWrittenInUtc) {
  const TimeZone zone("PST8PDT");
  const std::tuple<long, const char*, const char*> cases[] = {
      {0, "1970-01-01", "1970-01-01T00:00:00Z"},
      {1769903998, "2026-01-31", "2026-01-31T23:59:58Z"},
      {-1, "1969-12-31", "1969-12-31T23:59:59Z"},
      {253402300800, "10000-01-01", "10000-01-01T00:00:00Z"},
      {LONG_MAX, "", ""}};
  for (const auto& [seconds, date, combined] : cases) {
    EXPECT_EQ(DateToISODateUTC(seconds), date);
    EXPECT_EQ(DateToISOCombinedUTC(seconds), combined);
  }
}

TEST(Dates, AreReadInLocalTimeOrUtc) {
  const TimeZone zone("PST8PDT,M3.2.0,M11.1.0");
  const std::string stamp = "%a %b %d %H:%M:%S PDT %Y ";
  // Daylight saving time is in force in July only.
  EXPECT_EQ(SecondsOf(StringToTimePoint("Tue Jul 16 21:04:04 PDT 2019", stamp)), 1563336244);
  EXPECT_EQ(SecondsOf(StringToTimePoint("Wed Jan 16 21:04:04 PDT 2019 ", stamp)), 1547701444);
  EXPECT_EQ(SecondsOf(StringToTimePoint("2019-07-16", "%Y-%m-%d")), 1563260400);
  EXPECT_EQ(SecondsOf(UTCStringToTimePoint("20190716210404", "%Y%m%d%H%M%S")), 1563311044);
}

TEST(Dates, GiveTheZeroPointForTextThatDoesNotMatch) {
  const std::pair<std::string, const char*> cases[] = {
      {"", "%Y"},
      {"Tue Jul 16 21:04:04 PST 2019", "%a %b %d %H:%M:%S PDT %Y "},
      {"20190716210404x", "%Y%m%d%H%M%S"},
      {"2019071621", "%Y%m%d%H%M%S"},
      {"2019-02-29", "%Y-%m-%d"},
      {"2019-13-01", "%Y-%m-%d"},
      {"9999-01-01", "%Y-%m-%d"},
      {"mar. 16 juil. 2019", "%a %d %b %Y"},
      {std::string("2019\0", 5), "%Y"}};
  for (const auto& [text, format] : cases) {
    EXPECT_EQ(UTCStringToTimePoint(text, format), system_clock::time_point()) << text;
    EXPECT_EQ(StringToTimePoint(text, format), system_clock::time_point()) << text;
  }
  EXPECT_NE(UTCStringToTimePoint("2020-02-29", "%Y-%m-%d"), system_clock::time_point());
}

TEST(Dates, AreReadInEnglishWhateverTheLocale) {
  // Whichever of these this machine has; the classic one always.
  for (const auto* locale : {"C", "C.UTF-8", "de_DE.UTF-8", "fr_FR.UTF-8", "es_ES.UTF-8"}) {
    if (!std::setlocale(LC_ALL, locale)) continue;
    EXPECT_EQ(SecondsOf(UTCStringToTimePoint("Tuesday 03 December 2019", "%A %d %B %Y")),
              1575331200)
        << locale;
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), locale);
  }
  std::setlocale(LC_ALL, "C");
}

}  // namespace
