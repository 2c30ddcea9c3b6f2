#pragma once

#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common {

struct NORVIK_COMMON_API Base64Coder {
  /// Decodes standard Base64, passing over white space, and gives the texts in the decoded bytes,
  /// split at NUL bytes, in order; none for text that is no Base64. The end of the bytes ends the
  /// last text; an empty rest behind the last NUL is no text.
  static std::vector<std::string> DecodeStringBytes(const std::string& text);
};

}  // namespace Norvik::Common
