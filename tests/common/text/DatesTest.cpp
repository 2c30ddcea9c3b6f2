#include "common/text/Dates.h"

#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

const Json DATES = DataOf("common/text/dates.json");

long SecondsOf(const system_clock::time_point& time) { return system_clock::to_time_t(time); }

std::vector<long> BothWays(const std::string& text, const std::string& format) {
  return {SecondsOf(StringToTimePoint(text, format)),
          SecondsOf(UTCStringToTimePoint(text, format))};
}

TEST(Dates, AreWrittenInUtcAndReadInLocalTimeOrUtc) {
  const TimeZone zone("PST8PDT,M3.2.0,M11.1.0");
  ExpectRows(DATES["date of seconds"], DateToISODateUTC);
  ExpectRows(DATES["date and time of seconds"], DateToISOCombinedUTC);
  ExpectRows(DATES["local and UTC seconds of a text and a format"], BothWays);
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
