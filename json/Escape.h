#pragma once

#include <string>

#include "json/JSON.h"

namespace json {

/// The text as it stands between the quotes of a JSON string. Valid UTF-8 passes unchanged; a byte
/// that is none becomes the escape of the character of its number.
NORVIK_JSON_API std::string json_escape(const std::string& text);

/// The same, added to a text.
NORVIK_JSON_API void AppendEscaped(std::string& out, const std::string& text);

}  // namespace json
