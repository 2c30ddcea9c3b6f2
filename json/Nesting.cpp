#include "json/Nesting.h"

#include <array>

namespace json {

namespace {

/// Follows the text byte by byte; what stands inside strings does not count.
class Depth {
 public:
  void Take(char c) {
    if (inString_) {
      TakeInString(c);
    } else if (c == '"') {
      inString_ = true;
    } else if (c == '[' || c == '{') {
      ++depth_;
    } else if ((c == ']' || c == '}') && depth_ > 0) {
      --depth_;
    }
  }
  unsigned int Now() const { return depth_; }

 private:
  void TakeInString(char c) {
    if (escaped_) {
      escaped_ = false;
    } else if (c == '\\') {
      escaped_ = true;
    } else if (c == '"') {
      inString_ = false;
    }
  }

  unsigned int depth_ = 0;
  bool inString_ = false;
  bool escaped_ = false;
};

}  // namespace

bool NestsDeeper(std::istream& text, unsigned int limit) {
  Depth depth;
  std::array<char, 1 << 16> piece;
  while (text) {
    text.read(piece.data(), piece.size());
    for (std::streamsize i = 0; i < text.gcount(); ++i) {
      depth.Take(piece[static_cast<std::size_t>(i)]);
      if (depth.Now() > limit) return true;
    }
  }
  return false;
}

}  // namespace json
