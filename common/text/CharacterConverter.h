#pragma once

#include <string>

#include "common/Api.h"

namespace Norvik::Common {

struct NORVIK_COMMON_API CharacterConverter {
  /// The text with "_" in place of each character that a file name or an identifier may not hold:
  /// control characters, blanks, and any of \ / : * ? " < > | ' & % # $ ; `. Other UTF-8 stays.
  static std::string ChangeSpecialCharacter(const std::string& text);
};

}  // namespace Norvik::Common
