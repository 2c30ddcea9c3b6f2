#pragma once

#include <wx/string.h>

#include <string>
#include <vector>

#include "common/Api.h"

// Texts and bytes. No function here depends on the locale, throws, or shares state between threads.

namespace Norvik::Common {

/// The text in UTF-8; embedded NULs stay.
NORVIK_COMMON_API std::string ToUtf8(const wxString& text);
/// The text of UTF-8 bytes; embedded NULs stay. Empty if any byte of them is not UTF-8: run bytes
/// of unknown origin through `EncodeUtf8Characters` first.
NORVIK_COMMON_API wxString WxStringFromStdString(const std::string& text);
/// The wide text of UTF-8 bytes. A byte that is not UTF-8 becomes the character of its number
/// (Latin-1), so nothing is lost.
NORVIK_COMMON_API std::wstring StringToWstring_Deprecated(const std::string& text);
/// The bytes as valid UTF-8: characters stay, and any byte that belongs to none is taken as Latin-1
/// and encoded. Surrogates, overlong forms and numbers above U+10FFFF are not characters. The
/// result is equal to the argument exactly if that is valid UTF-8.
NORVIK_COMMON_API std::string EncodeUtf8Characters(const std::string& text);

/// A copy in upper case. Only ASCII letters change.
NORVIK_COMMON_API std::string ToUpper(const std::string& text);
/// A copy without ASCII white space at both ends.
NORVIK_COMMON_API std::string trim_copy(std::string text);
/// The text on one line, for messages: each ASCII control character (line ends among them) becomes
/// a blank, then blanks at the end are removed.
NORVIK_COMMON_API std::string OnOneLine(std::string text);
/// The text for a terminal: a line feed becomes "\\n", another control character (C0, C1, DEL) and
/// a byte that is not UTF-8 becomes its number, as "\\x1b" or "\\u009b". So a name from outside can
/// neither command the terminal nor forge a line.
NORVIK_COMMON_API std::string EscapeControls(const std::string& text);

struct NORVIK_COMMON_API CharacterConverter {
  /// The text in UTF-8 with "_" in place of each character that a file name or an identifier may
  /// not hold: control characters, blanks, and any of \ / : * ? " < > | ' & % # $ ; `. Bytes that
  /// are not UTF-8 are taken as `EncodeUtf8Characters` does.
  static std::string ChangeSpecialCharacter(const std::string& text);
};

struct NORVIK_COMMON_API Base64Coder {
  /// Decodes standard Base64, ignoring white space, and splits the bytes at each NUL. The texts
  /// come in order; the last one may end without a NUL, and a NUL at the very end begins no further
  /// text. Empty if the argument is not Base64.
  static std::vector<std::string> DecodeStringBytes(const std::string& text);
};

}  // namespace Norvik::Common
