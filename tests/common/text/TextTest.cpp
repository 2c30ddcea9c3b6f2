#include "common/text/Text.h"

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
  EXPECT_TRUE(WxStringFromStdString("caf\xE9").empty());
  ExpectRows(
      tables["trimmed"], +[](const std::string& text) { return trim_copy(text); });
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

}  // namespace
