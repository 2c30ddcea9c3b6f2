#include "common/text/CharacterConverter.h"

#include <cstddef>
#include <cstring>

#include "common/text/Text.h"

namespace Norvik::Common {

namespace {

bool IsForbiddenInName(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte <= ' ' || byte == 0x7F || std::strchr("\\/:*?\"<>|'&%#$;`", c) != nullptr;
}

/// Whether one of the control characters U+0080 to U+009F begins at the position.
bool IsLongControl(const std::string& text, std::size_t at) {
  return at + 1 < text.size() && text[at] == '\xC2' &&
         static_cast<unsigned char>(text[at + 1]) < 0xA0;
}

}  // namespace

std::string CharacterConverter::ChangeSpecialCharacter(const std::string& text) {
  const std::string source = EncodeUtf8Characters(text);
  std::string changed;
  for (std::size_t at = 0; at < source.size(); ++at) {
    const bool longControl = IsLongControl(source, at);
    changed += longControl || IsForbiddenInName(source[at]) ? '_' : source[at];
    if (longControl) ++at;
  }
  return changed;
}

}  // namespace Norvik::Common
