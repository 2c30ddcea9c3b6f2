#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace json {

/// One step through bytes that should be UTF-8.
struct Utf8Step {
  enum class Kind : std::uint8_t {
    Character,  ///< a character of Unicode in its shortest form, as strict readers accept it
    Irregular,  ///< formed like a character, but none: too long a form, a surrogate, above U+10FFFF
    Stray,      ///< one byte that begins no sequence, or whose sequence is cut off
  };
  Kind kind;
  std::size_t length;  ///< bytes to the next step, at least 1
  char32_t code;       ///< number in the bits of the sequence; of a stray byte the byte itself
};

/// Bytes of the sequence that a byte announces by its upper bits; 0 if it begins no sequence.
constexpr std::size_t Utf8Length(char lead) {
  const auto byte = static_cast<unsigned char>(lead);
  if (byte < 0x80) return 1;
  if ((byte & 0xE0) == 0xC0) return 2;
  if ((byte & 0xF0) == 0xE0) return 3;
  return (byte & 0xF8) == 0xF0 ? 4 : 0;
}

/// The step at a position, which must be inside the text. This is the only decoder of UTF-8 here:
/// what a caller lets through, it decides by the kind of the step.
constexpr Utf8Step Utf8StepAt(std::string_view text, std::size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  if (lead < 0x80) return {Utf8Step::Kind::Character, 1, lead};
  constexpr char32_t SMALLEST[] = {0, 0, 0x80, 0x800, 0x10000};
  const std::size_t length = Utf8Length(text[at]);
  if (length == 0 || text.size() - at < length) return {Utf8Step::Kind::Stray, 1, lead};
  char32_t code = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[at + i]);
    if ((next & 0xC0) != 0x80) return {Utf8Step::Kind::Stray, 1, lead};
    code = code << 6 | (next & 0x3Fu);
  }
  const bool isSurrogate = code >= 0xD800 && code < 0xE000;
  const bool isCharacter = code >= SMALLEST[length] && !isSurrogate && code <= 0x10FFFF;
  return {isCharacter ? Utf8Step::Kind::Character : Utf8Step::Kind::Irregular, length, code};
}

/// Whether the text consists of characters only.
constexpr bool IsUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    if (static_cast<unsigned char>(text[at]) < 0x80) {  // most are, and this is quick
      ++at;
      continue;
    }
    const Utf8Step step = Utf8StepAt(text, at);
    if (step.kind != Utf8Step::Kind::Character) return false;
    at += step.length;
  }
  return true;
}

}  // namespace json
