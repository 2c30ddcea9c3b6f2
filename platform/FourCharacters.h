#pragma once

#include <cstdint>
#include <string>

namespace Norvik::Platform {

/// The code of four characters, the first one in the highest byte.
constexpr std::uint32_t FourCharacters(const char (&text)[5]) {
  std::uint32_t code = 0;
  for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(text[i]);
  return code;
}

/// The four characters of such a code.
inline std::string CharactersOf(std::uint32_t code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>((code >> shift) & 0xFFu);
  return text;
}

}  // namespace Norvik::Platform
