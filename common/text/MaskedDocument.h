#pragma once

#include <istream>
#include <streambuf>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// Makes a stored document readable for a parser that accepts strict UTF-8 only. The writer of
/// documents lets irregular sequences through (see `json::Utf8Step`). Here, each byte of such a
/// sequence is read as one of the last 128 characters of Unicode, and `Unmask` turns these back
/// into the bytes. Any other byte that is not UTF-8 is read as 0xFF, which every parser refuses.
///
/// A stream buffer: `std::istream(&masked)` reads the masked document, piece by piece.
class NORVIK_COMMON_API MaskedDocument : public std::streambuf {
 public:
  /// Keeps the reference. The document must be at its beginning.
  explicit MaskedDocument(std::istream& document);
  ~MaskedDocument() override;

  /// The character that stands for a byte from 0x80 on.
  static std::string Mask(char byte);
  /// The original bytes of a text that comes from the parsed document, or of a JSON text made of
  /// it.
  static std::string Unmask(std::string text);

 private:
  int_type underflow() override;
  void Add(char byte);
  void AddSequence();

  std::istream& document_;
  std::string sequence_;  ///< not complete yet
  std::string masked_;    ///< the piece that is read now
};

}  // namespace Norvik::Common
