#include "json/Escape.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "json/Utf8.h"

namespace json {
namespace {

/// Whether a byte is written unchanged, by its number.
constexpr std::array<bool, 256> PlainBytes() {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0x20; byte < 0x80; ++byte) plain[byte] = byte != '"' && byte != '\\';
  return plain;
}
constexpr std::array<bool, 256> plainBytes = PlainBytes();

/// Whether the eight bytes at a place are written unchanged.
bool ArePlain(const char* bytes) {
  constexpr std::uint64_t ones = 0x0101010101010101;
  constexpr std::uint64_t high = 0x80 * ones;
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, 8);
  // A byte smaller than what is subtracted gets its highest bit set.
  const std::uint64_t quote = (word ^ ('"' * ones)) - ones;
  const std::uint64_t backslash = (word ^ ('\\' * ones)) - ones;
  const std::uint64_t control = word - 0x20 * ones;
  return ((word | quote | backslash | control) & high) == 0;
}

/// Position of the first byte, from `start` on, that is not written unchanged; the size if all are.
std::size_t EndOfPlain(const std::string& text, std::size_t start) {
  const std::size_t size = text.size();
  std::size_t i = start;
  while (i + 8 <= size && ArePlain(text.data() + i)) i += 8;
  // The rest together with bytes before it, which are known to be plain.
  if (size - i < 8 && size - start >= 8 && ArePlain(text.data() + size - 8)) return size;
  while (i < size && plainBytes[static_cast<unsigned char>(text[i])]) ++i;
  return i;
}

/// Length of the sequence at a byte at or above 0x80; 0 for a stray byte. Deliberately lets
/// irregular sequences through: that is the form of the documents.
std::size_t SequenceLength(const std::string& text, std::size_t start) {
  const Utf8Step step = Utf8StepAt(text, start);
  return step.kind == Utf8Step::Kind::Stray ? 0 : step.length;
}

void AppendNumbered(std::string& out, unsigned char byte) {
  constexpr char digits[] = "0123456789abcdef";
  out += "\\u00";
  out += digits[byte >> 4];
  out += digits[byte & 0xF];
}

void AppendControl(std::string& out, unsigned char byte) {
  switch (byte) {
    case '\b':
      out += "\\b";
      break;
    case '\t':
      out += "\\t";
      break;
    case '\n':
      out += "\\n";
      break;
    case '\f':
      out += "\\f";
      break;
    case '\r':
      out += "\\r";
      break;
    case '"':
      out += "\\\"";
      break;
    case '\\':
      out += "\\\\";
      break;
    default:
      AppendNumbered(out, byte);
  }
}

}  // namespace

bool IsPlain(const std::string& text) { return EndOfPlain(text, 0) == text.size(); }

bool CopyPlain(const std::string& text, char* to) {
  const std::size_t size = text.size();
  const char* const from = text.data();
  if (size < 8) {
    for (std::size_t i = 0; i < size; ++i) {
      if (!plainBytes[static_cast<unsigned char>(from[i])]) return false;
      to[i] = from[i];
    }
    return true;
  }
  for (std::size_t i = 0; i < size; i += 8) {
    // The last eight overlap those before them.
    const std::size_t at = std::min(i, size - 8);
    if (!ArePlain(from + at)) return false;
    std::memcpy(to + at, from + at, 8);
  }
  return true;
}

void AppendEscaped(std::string& out, const std::string& text) {
  std::size_t copied = 0;
  std::size_t i = 0;
  while (i < text.size()) {
    i = EndOfPlain(text, i);
    if (i == text.size()) break;
    const auto byte = static_cast<unsigned char>(text[i]);
    const std::size_t length = byte < 0x80 ? 0 : SequenceLength(text, i);
    if (length > 0) {
      i += length;
      continue;
    }
    out.append(text, copied, i - copied);
    AppendControl(out, byte);
    copied = ++i;
  }
  out.append(text, copied);
}

std::string json_escape(const std::string& text) {
  std::string out;
  out.reserve(text.size() * 2);
  AppendEscaped(out, text);
  return out;
}

}  // namespace json
