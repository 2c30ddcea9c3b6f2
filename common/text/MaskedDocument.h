#pragma once

#include <istream>
#include <streambuf>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// A stored document for a parser that takes strict UTF-8 only. The writer of documents also lets
/// through long forms of a character, surrogates and what lies beyond the last character. The bytes
/// of such a sequence are read here as characters that stand for one byte each; `Unmask` gives the
/// bytes back. Any other byte that is no UTF-8 stays one that no parser takes.
class NORVIK_COMMON_API MaskedDocument : public std::streambuf {
 public:
  /// Keeps the reference.
  explicit MaskedDocument(std::istream& document);
  ~MaskedDocument() override;

  /// A text of the parsed document, or what is written from it, as it stands in the document.
  static std::string Unmask(std::string text);

 private:
  int_type underflow() override;
  void Take(char byte);
  void TakeSequence();

  std::istream& document_;
  std::string sequence_;  ///< begun and not ended yet
  std::string masked_;    ///< what is read next
};

}  // namespace Norvik::Common
