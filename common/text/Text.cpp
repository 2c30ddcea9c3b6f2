#include "common/text/Text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Norvik::Common {

namespace {

constexpr char BLANKS[] = " \t\n\v\f\r";

struct CodePoint {
  char32_t value;
  std::size_t length;  ///< bytes taken
  bool valid;          ///< false: a byte that begins no character, as Latin-1
};

std::uint8_t ByteAt(const std::string& text, std::size_t at) {
  return static_cast<std::uint8_t>(text[at]);
}

/// Bytes of the character that a lead byte announces; 0 if it announces none.
std::size_t SequenceLength(std::uint8_t lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead < 0xE0) return 2;
  if (lead >= 0xE0 && lead < 0xF0) return 3;
  return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

CodePoint CodePointAt(const std::string& text, std::size_t at) {
  static constexpr char32_t SMALLEST[] = {0, 0, 0x80, 0x800, 0x10000};
  const std::uint8_t lead = ByteAt(text, at);
  const CodePoint single{lead, 1, lead < 0x80};
  const std::size_t length = SequenceLength(lead);
  if (length < 2 || text.size() - at < length) return single;
  char32_t value = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const std::uint8_t next = ByteAt(text, at + i);
    if ((next & 0xC0) != 0x80) return single;
    value = (value << 6) | (next & 0x3Fu);
  }
  const bool surrogate = value >= 0xD800 && value < 0xE000;
  if (value < SMALLEST[length] || surrogate || value > 0x10FFFF) return single;
  return {value, length, true};
}

}  // namespace

std::string ToUtf8(const wxString& text) {
  const auto buffer = text.utf8_str();
  return std::string(buffer.data(), buffer.length());
}

wxString WxStringFromStdString(const std::string& text) {
  return wxString::FromUTF8(text.data(), text.size());
}

std::wstring StringToWstring_Deprecated(const std::string& text) {
  std::wstring wide;
  for (std::size_t at = 0; at < text.size();) {
    const CodePoint point = CodePointAt(text, at);
    wide += static_cast<wchar_t>(point.value);
    at += point.length;
  }
  return wide;
}

std::string ToUpper(const std::string& text) {
  std::string upper = text;
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

std::string trim_copy(std::string text) {
  text.erase(text.find_last_not_of(BLANKS) + 1);
  text.erase(0, text.find_first_not_of(BLANKS));
  return text;
}

std::string OnOneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string EncodeUtf8Characters(const std::string& text) {
  std::string encoded;
  for (std::size_t at = 0; at < text.size();) {
    const CodePoint point = CodePointAt(text, at);
    if (point.valid) {
      encoded.append(text, at, point.length);
    } else {
      encoded += static_cast<char>(0xC0 | (point.value >> 6));
      encoded += static_cast<char>(0x80 | (point.value & 0x3F));
    }
    at += point.length;
  }
  return encoded;
}

}  // namespace Norvik::Common
