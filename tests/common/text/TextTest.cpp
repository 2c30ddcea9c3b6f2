#include "common/text/Text.h"

#include "common/text/Dates.h"
#include "common/text/OperatingSystemType.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

/// All ways to encode have to agree.
Bytes Encoded(const Bytes& bytes) {
  const std::string encoded = EncodeUtf8Characters(bytes);
  EXPECT_EQ(EncodeUtf8Characters(encoded), encoded);
  EXPECT_EQ(ToUtf8(WxStringFromStdString(encoded)), encoded);
  EXPECT_EQ(ToUtf8(wxString(StringToWstring_Deprecated(bytes))), encoded);
  return encoded;
}

TEST(Text, IsChangedAsItsTablesSay) {
  const Json tables = DataOf("common/text/texts.json");
  for (const auto* locale : {"C", "C.UTF-8"}) {
    const tests::ScopedLocale scoped(locale);
    ExpectRows(tables["bytes that are no UTF-8 are taken as Latin-1"], Encoded);
  }
  for (const char* bytes : {"caf\xE9", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xC0\x80"}) {
    EXPECT_TRUE(WxStringFromStdString(bytes).empty()) << Bytes(bytes);
  }
  ExpectRows(
      tables["trimmed"], +[](const std::string& text) { return trim_copy(text); });
  ExpectRows(
      tables["for a terminal"], +[](const Bytes& text) { return EscapeControls(text); });
  ExpectRows(
      tables["upper case"], +[](const std::string& text) { return ToUpper(text); });
  ExpectRows(
      tables["names of files"],
      +[](const Bytes& name) { return Bytes(CharacterConverter::ChangeSpecialCharacter(name)); });
  ExpectRows(
      tables["types of operating systems"], +[](const std::string& text) {
        return OperatingSystemType::ToString(OperatingSystemType::FromString(text));
      });
  ExpectRows(tables["texts between the NUL bytes of Base64"], Base64Coder::DecodeStringBytes);
}

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
