#include "json/Nesting.h"

namespace json {

bool NestsDeeperThan(const std::string& text, std::size_t limit) {
  std::ptrdiff_t depth = 0;  // below zero in a text that closes more than it opens
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char character = text[i];
    if (character == '"') inString = !inString;
    if (inString) {
      if (character == '\\') ++i;
    } else if (character == '[' || character == '{') {
      if (++depth > 0 && static_cast<std::size_t>(depth) > limit) return true;
    } else if (character == ']' || character == '}') {
      --depth;
    }
  }
  return false;
}

}  // namespace json
