#include "common/text/Text.h"

#include <gtest/gtest.h>

#include <clocale>

#include "common/text/Base64Coder.h"
#include "common/text/CharacterConverter.h"
#include "common/text/OperatingSystemType.h"

namespace {

using namespace Norvik::Common;

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

TEST(Text, TakesBytesThatAreNoUtf8AsLatin1) {
  const std::tuple<std::string, std::string, std::wstring> cases[] = {
      {"caf\xE9", "café", L"café"},
      {"日本 🖨", "日本 🖨", L"日本 🖨"},
      {"\xE6\x97", "\xC3\xA6\xC2\x97", L"\u00E6\u0097"},                    // cut
      {"\xC0\x80", "\xC3\x80\xC2\x80", L"\u00C0\u0080"},                    // overlong
      {"\xE0\x9F\xBF", "\xC3\xA0\xC2\x9F\xC2\xBF", L"\u00E0\u009F\u00BF"},  // overlong
      {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xC2\x80", L"\u00ED\u00A0\u0080"},  // surrogate
      {"\xF4\x90\x80\x80", "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80", L"\u00F4\u0090\u0080\u0080"},
      {"\xFF", "\xC3\xBF", L"\u00FF"},
      {std::string("a\0b", 3), std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
  };
  for (const auto& [bytes, encoded, wide] : cases) {
    EXPECT_EQ(EncodeUtf8Characters(bytes), encoded);
    EXPECT_EQ(EncodeUtf8Characters(encoded), encoded);
    EXPECT_EQ(StringToWstring_Deprecated(bytes), wide);
  }
}

TEST(Text, TrimsAndRaises) {
  EXPECT_EQ(trim_copy(" \t a b\r\n"), "a b");
  EXPECT_EQ(trim_copy(" \n "), "");
  EXPECT_EQ(trim_copy(""), "");
  EXPECT_EQ(ToUpper("abc-xyz é 1"), "ABC-XYZ é 1");
}

TEST(CharacterConverter, ReplacesWhatAFileNameMayNotHold) {
  const std::pair<std::string, std::string> cases[] = {
      {"Ana's Mac: 1/2", "Ana_s_Mac__1_2"},
      {"\\/:*?\"<>|'&%#$;`\n\x7F", std::string(18, '_')},
      {"日本-É.x_y(1)", "日本-É.x_y(1)"},
      {"a\u0085b\u00A0c", "a_b\u00A0c"},
      {"caf\xE9", "café"},
      {std::string("a\0b", 3), "a_b"}};
  for (const auto& [name, changed] : cases) {
    EXPECT_EQ(CharacterConverter::ChangeSpecialCharacter(name), changed);
  }
}

TEST(OperatingSystemType, HasATextForEachTypeThatReadsBack) {
  for (const auto* text : {"macOS", "Windows", "Linux", "Unknown"}) {
    EXPECT_EQ(OperatingSystemType::ToString(OperatingSystemType::FromString(text)), text);
  }
  EXPECT_EQ(OperatingSystemType::FromString("MACos"), OperatingSystemType::MACOS);
  EXPECT_EQ(OperatingSystemType::FromString(""), OperatingSystemType::UNKNOWN);
}

TEST(Base64Coder, GivesTheTextsBetweenTheNulBytes) {
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"", {}},
      {"cHJpbnRlcgA=", {"printer"}},
      {"cHJpbnRlcg==", {"printer"}},
      {"b25lAHR3bwA=", {"one", "two"}},
      {"b25lAAB0d28=", {"one", "", "two"}},
      {"\n\tb25l\r\n\tAHR3bwA=\n\t", {"one", "two"}},
      {"AA==", {""}},
      {"b25l!", {}},
      {"b25lA", {}},
      {"cHJpbnRlcg=", {}},
  };
  for (const auto& [text, texts] : cases) {
    EXPECT_EQ(Base64Coder::DecodeStringBytes(text), texts) << text;
  }
}

}  // namespace
