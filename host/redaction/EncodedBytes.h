#pragma once

#include <functional>
#include <string>

namespace Norvik::Host {

// Bytes that a text holds in digits: Base64 in a property list, or hexadecimal.

/// Calls `take` with begin and length of each run of at least 12 hexadecimal digits that make whole
/// bytes, or of what is between "<data>" and "</data>".
using TakePart = std::function<void(std::size_t begin, std::size_t length)>;
void ForEachHexPart(const std::string& text, const TakePart& take);
void ForEachDataPart(const std::string& text, const TakePart& take);
/// The same for each run of at least 8 characters of Base64, of either alphabet, with its padding.
/// Most of them are words.
void ForEachBase64Part(const std::string& text, const TakePart& take);

/// Empty for a text that is not valid Base64. White space is ignored.
std::string FromBase64(const std::string& text);
/// The same for Base64 of either alphabet and with or without padding.
std::string FromAnyBase64(const std::string& text);
/// The Base64 of bytes, laid out as `text`, which is that of as many bytes.
std::string ToBase64(const std::string& bytes, std::string text);
std::string ToAnyBase64(const std::string& bytes, std::string text);

/// @param digits an even number of hexadecimal digits
std::string FromHex(const std::string& digits);
/// In upper case if `digits` have an upper-case letter.
std::string ToHex(const std::string& bytes, const std::string& digits);

/// A text without the escapes of a URI, and with them: all but letters, digits and what separates
/// the parts of a URI.
std::string FromPercent(const std::string& text);
std::string ToPercent(const std::string& bytes);

bool IsHexDigit(char c);

/// Whether bytes are UTF-8 without control characters but blanks and line ends, and not empty.
bool IsText(const std::string& bytes);

}  // namespace Norvik::Host
