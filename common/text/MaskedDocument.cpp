#include "common/text/MaskedDocument.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "json/Utf8.h"

namespace Norvik::Common {

namespace {

constexpr std::size_t MASKED_PIECE = 16384;
constexpr char NO_UTF8 = '\xFF';

// The last 128 characters of Unicode stand for the bytes from 0x80 on. Where a document has one of
// them itself, that one is masked too.
constexpr char MASK[] = "\xF4\x8F";
constexpr std::size_t MASK_LENGTH = 4;

bool IsAscii(char byte) { return (byte & 0x80) == 0; }

/// Of a sequence that is complete.
bool IsCharacter(const std::string& sequence) {
  return json::Utf8StepAt(sequence, 0).kind == json::Utf8Step::Kind::Character;
}

bool IsMask(const std::string& sequence, std::size_t at) {
  return sequence.compare(at, 2, MASK) == 0 && (sequence[at + 2] & 0x3E) == 0x3E;
}

}  // namespace

MaskedDocument::MaskedDocument(std::istream& document) : document_(document) {}

MaskedDocument::~MaskedDocument() = default;

std::string MaskedDocument::Mask(char byte) {
  const int code = static_cast<unsigned char>(byte);
  return {MASK[0], MASK[1], static_cast<char>(0xBC | (code >> 6)),
          static_cast<char>(0x80 | (code & 0x3F))};
}

std::string MaskedDocument::Unmask(std::string text) {
  for (auto at = text.find(MASK); at != std::string::npos; at = text.find(MASK, at + 1)) {
    if (!IsMask(text, at)) continue;
    const int code = (text[at + 2] & 0x03) << 6 | (text[at + 3] & 0x3F);
    text.replace(at, MASK_LENGTH, 1, static_cast<char>(code));
  }
  return text;
}

MaskedDocument::int_type MaskedDocument::underflow() {
  char piece[MASKED_PIECE];
  masked_.clear();
  while (masked_.empty()) {
    document_.read(piece, MASKED_PIECE);
    if (document_.gcount() == 0) {
      if (sequence_.empty()) return traits_type::eof();
      sequence_.clear();
      masked_ += NO_UTF8;
    }
    const char* const end = piece + document_.gcount();
    for (const char* at = piece; at != end;) {
      // Most of a document is ASCII.
      const char* const other = sequence_.empty() ? std::find_if_not(at, end, IsAscii) : at;
      masked_.append(at, other);
      at = other;
      if (at != end) Add(*at++);
    }
  }
  setg(masked_.data(), masked_.data(), masked_.data() + masked_.size());
  return traits_type::to_int_type(masked_.front());
}

void MaskedDocument::Add(char byte) {
  const bool continues = (byte & 0xC0) == 0x80;
  if (continues == sequence_.empty()) {
    masked_ += NO_UTF8;
    sequence_.clear();
  }
  if (IsAscii(byte)) {
    masked_ += byte;
    return;
  }
  sequence_ += byte;
  if (sequence_.size() >= json::Utf8Length(sequence_.front())) AddSequence();
}

void MaskedDocument::AddSequence() {
  const std::string sequence = std::exchange(sequence_, {});
  if (sequence.size() != json::Utf8Length(sequence.front())) {
    masked_ += NO_UTF8;
  } else if (IsCharacter(sequence) && !IsMask(sequence, 0)) {
    masked_ += sequence;
  } else {
    for (const char byte : sequence) masked_ += Mask(byte);
  }
}

}  // namespace Norvik::Common
