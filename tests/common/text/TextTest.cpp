#include "common/text/Text.h"

#include <gtest/gtest.h>

#include <clocale>

#include "common/text/Base64Coder.h"
#include "common/text/CharacterConverter.h"
#include "common/text/OperatingSystemType.h"
#include "support/Cases.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

TEST(Text, PassesUtf8BothWaysUnderEveryLocale) {
  const std::string texts[] = {"", "plain", "Ünïcode – 日本 🖨", std::string("a\0b", 3)};
  for (const auto* locale : {"C", "C.UTF-8"}) {
    ASSERT_NE(std::setlocale(LC_CTYPE, locale), nullptr) << locale;
    for (const auto& text : texts) {
      EXPECT_EQ(ToUtf8(WxStringFromStdString(text)), text) << locale;
    }
  }
  std::setlocale(LC_CTYPE, "C");
  EXPECT_TRUE(WxStringFromStdString("caf\xE9").empty());
}

/// All ways to encode have to agree.
Bytes Encoded(const Bytes& bytes) {
  const std::string encoded = EncodeUtf8Characters(bytes);
  EXPECT_EQ(EncodeUtf8Characters(encoded), encoded);
  EXPECT_EQ(ToUtf8(wxString(StringToWstring_Deprecated(bytes))), encoded);
  return encoded;
}

TEST(Text, IsChangedAsItsTablesSay) {
  const Json tables = DataOf("common/text/texts.json");
  ExpectRows(tables["bytes that are no UTF-8 are taken as Latin-1"], Encoded);
  ExpectRows(
      tables["trimmed"], +[](const std::string& text) { return trim_copy(text); });
  ExpectRows(
      tables["upper case"], +[](const std::string& text) { return ToUpper(text); });
  ExpectRows(
      tables["names of files"],
      +[](const Bytes& name) { return Bytes(CharacterConverter::ChangeSpecialCharacter(name)); });
  ExpectRows(tables["texts between the NUL bytes of Base64"], Base64Coder::DecodeStringBytes);
}

TEST(OperatingSystemType, HasATextForEachTypeThatReadsBack) {
  for (const auto* text : {"macOS", "Windows", "Linux", "Unknown"}) {
    EXPECT_EQ(OperatingSystemType::ToString(OperatingSystemType::FromString(text)), text);
  }
  EXPECT_EQ(OperatingSystemType::FromString("MACos"), OperatingSystemType::MACOS);
  EXPECT_EQ(OperatingSystemType::FromString(""), OperatingSystemType::UNKNOWN);
}

}  // namespace
