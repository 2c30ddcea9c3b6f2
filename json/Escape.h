#pragma once

#include <string>

#include "json/JSON.h"

namespace json {

/// A text as it is written between the quotes of a JSON string. Quotes, backslashes and control
/// characters are escaped; "/" and 0x7F are not. UTF-8 stays unchanged, also surrogates, overlong
/// forms and numbers above U+10FFFF; a stray byte becomes the escape of the character of its
/// number: 0xE9 becomes \u00e9.
NORVIK_JSON_API std::string json_escape(const std::string& text);

/// Whether that is the text itself, and all of it is ASCII.
NORVIK_JSON_API bool IsPlain(const std::string& text);

/// Copies a plain text to `to`, which has room for it. False for any other, of which a part may be
/// copied then.
NORVIK_JSON_API bool CopyPlain(const std::string& text, char* to);

/// Appends the same to `out`, without a copy of the text.
NORVIK_JSON_API void AppendEscaped(std::string& out, const std::string& text);

}  // namespace json
