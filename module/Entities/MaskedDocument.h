#pragma once

#include <istream>
#include <streambuf>
#include <string>

namespace Norvik::KOB {

/// A stored document for a parser that takes strict UTF-8 only. The writer of documents also lets
/// through long forms of a character, surrogates and what lies beyond the last character. The bytes
/// of such a sequence are read here as characters that stand for one byte each; `Unmask` gives the
/// bytes back. Any other byte that is no UTF-8 stays one that no parser takes.
class MaskedDocument : public std::streambuf {
 public:
  /// Keeps the reference.
  explicit MaskedDocument(std::istream& document) : document_(document) {}

  /// A text of the parsed document as it stands in the document.
  static std::string Unmask(std::string text);

 private:
  int_type underflow() override;
  void Take(char byte);
  void TakeSequence();

  std::istream& document_;
  std::string sequence_;  ///< begun and not ended yet
  std::string masked_;    ///< what is read next
};

}  // namespace Norvik::KOB
