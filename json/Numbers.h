#pragma once

#include <string>

#include "json/JSON.h"

// Numbers with a fraction, as documents have them, whatever the locale.

namespace json {

/// At most six significant digits, in the shorter of plain and exponent form: "12.3457", "1e-05".
NORVIK_JSON_API std::string FloatingText(double number);

/// The number that a text holds; 0 if the text as a whole is no number.
NORVIK_JSON_API double FloatingOf(const std::string& text);

}  // namespace json
