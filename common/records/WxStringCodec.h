#pragma once

#include <wx/string.h>

#include <string>

#include "common/text/Text.h"
#include "json/FieldTable.h"

namespace json {

template <>
struct TextCodec<wxString> {
  static constexpr bool isText = true;
  /// Empty if the bytes are not valid in the encoding of the conversion.
  static wxString Decode(const std::string& bytes, Conversion conversion) {
    return conversion == Conversion::Locale ? wxString(bytes)
                                            : Norvik::Common::WxStringFromStdString(bytes);
  }
  static std::string Encode(const wxString& text) { return Norvik::Common::ToUtf8(text); }
};

/// Byte string that is written by way of a wide text: one that is not valid UTF-8 is written empty.
/// A plain field writes its invalid bytes as escapes instead.
struct WideTextFormat : PlainFormat {
  void Write(JSON& target, const std::string& bytes) const {
    WriteValue(target, Norvik::Common::WxStringFromStdString(bytes));
  }
};

template <class Owner>
constexpr auto WideText(const char* key, std::string Owner::*member) {
  return Entry(key, member, WideTextFormat{{{}, Conversion::Utf8}});
}

}  // namespace json
