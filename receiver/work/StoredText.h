#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Norvik::Receiver {

/// A text of any bytes as the database keeps it: its length, a colon, and base64 of the deflated
/// text.
std::string Packed(const std::string& text);
/// An empty text if it is damaged.
std::string Unpacked(const std::string& packed);

/// A part of a parsed document as JSON that every database can store and search: bytes that are no
/// UTF-8 and the character NUL are U+FFFD.
std::string StorableText(const nlohmann::json& value);

}  // namespace Norvik::Receiver
