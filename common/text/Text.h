#pragma once

#include <wx/string.h>

#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// UTF-8 bytes of a text, whatever the locale; embedded NULs stay.
NORVIK_COMMON_API std::string ToUtf8(const wxString& text);
/// Text from UTF-8 bytes, whatever the locale; embedded NULs stay. Bytes that are no UTF-8 give an
/// empty text.
NORVIK_COMMON_API wxString WxStringFromStdString(const std::string& text);
/// Wide text from UTF-8; a byte that is none becomes the character of its number.
NORVIK_COMMON_API std::wstring StringToWstring_Deprecated(const std::string& text);

/// Upper-case copy; only ASCII letters change.
NORVIK_COMMON_API std::string ToUpper(const std::string& text);
/// Copy without the blanks (ASCII white space) at both ends.
NORVIK_COMMON_API std::string trim_copy(std::string text);
/// The text on one line, for messages: each control character (line ends among them) becomes a
/// blank, and blanks at the end go.
NORVIK_COMMON_API std::string OnOneLine(std::string text);
/// The text in UTF-8: bytes that are valid stay, any other is taken as Latin-1.
NORVIK_COMMON_API std::string EncodeUtf8Characters(const std::string& text);

}  // namespace Norvik::Common
