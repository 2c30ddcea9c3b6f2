#pragma once

#include <wx/string.h>

#include <string>

#include "common/text/Text.h"
#include "json/FieldTable.h"

namespace json {

template <>
struct TextCodec<wxString> {
  static constexpr bool isText = true;
  /// Empty for bytes that the conversion does not take.
  static wxString Decode(const std::string& bytes, Conversion conversion) {
    return conversion == Conversion::Locale ? wxString(bytes)
                                            : Norvik::Common::WxStringFromStdString(bytes);
  }
  static std::string Encode(const wxString& text) { return Norvik::Common::ToUtf8(text); }
};

}  // namespace json
